// Where the master loop leads what it finds in the queues.
#include "kit/Helper.h"
#include "support/QelmTest.h"

namespace {

class MasterThread : public QelmTest {
 protected:
  void Connect(SOCKET_INTERFACE* interface) { Publish<int>(interface->Descriptor.State, 3); }

  // Runs the loop until the condition holds, and ends it by a signal.
  template <class Condition>
  void RunUntil(Condition holds) {
    Helper loop([this] { qelm.MasterThread(); });
    EXPECT_TRUE(WaitUntil(holds));
    StoreShared(signal, 15);
  }

  void RunUntilTaken(QEQUEUE& queue) {
    // Two more markers show that the pass that took the last entry is over.
    for (int i = 0; i < 2; ++i) queue.ToQueue(kMarker);
    RunUntil([&] { return queue.IsEmpty(); });
  }

  const QList kMarker = List(";");  // no command, and no report to anybody
};

const Texts kStopLines{"[INF] signal 15 on CAE interface", "[INF] signal 15 on IO interface",
                       "[INF] signal 15 on MON interface", "[INF] signal 15 on serial interface",
                       "[INF] qelm is stopped by SIGTERM or SIGINT"};

}  // namespace

TEST_F(MasterThread, AReportGoesToTheIoClientAndToTheMonitor) {
  Connect(qelm.IoInterface);
  Connect(qelm.MonInterface);
  qelm.SerialQueue->ToQueue(List("a3b0d40"));
  qelm.SerialQueue->ToQueue(List("a3b1d01"));
  RunUntil([&] { return qelm.MonInterface->OutQueue->Size() == 2; });
  EXPECT_EQ(IoOutput(), (Texts{"a3b0d40#", "a3b1d01#"}));
  EXPECT_EQ(MonOutput(), (Texts{"a3b0d40#", "a3b1d01#"}));
  EXPECT_EQ(CaeReplies(), Texts());
}

TEST_F(MasterThread, WithoutAMonitorAReportGoesToTheIoClientAlone) {
  Connect(qelm.IoInterface);
  qelm.SerialQueue->ToQueue(List("a3b0d40"));
  RunUntil([&] { return !qelm.IoInterface->OutQueue->IsEmpty(); });
  EXPECT_EQ(IoOutput(), Texts{"a3b0d40#"});
  EXPECT_EQ(MonOutput(), Texts());
}

TEST_F(MasterThread, WithoutAnIoClientAReportReachesNobody) {
  Connect(qelm.MonInterface);
  qelm.SerialQueue->ToQueue(List("a3b0d40"));
  RunUntil([&] { return qelm.SerialQueue->IsEmpty(); });
  EXPECT_EQ(IoOutput(), Texts());
  EXPECT_EQ(MonOutput(), Texts());
}

TEST_F(MasterThread, AnIoMessageBecomesAFrameAndACopyForTheMonitor) {
  PlugCard(5, 0x03);
  Connect(qelm.MonInterface);
  qelm.IoQueue->ToQueue(List("a5b1dFB;"));
  RunUntil([&] { return !qelm.MonInterface->OutQueue->IsEmpty(); });
  EXPECT_EQ(CardQueue(5).DeQueue(), List({0x10, 0x05, 0x02, 0xFF, 0xFB}));
  EXPECT_EQ(MonOutput(), Texts{"a5b1dFB;"});
  EXPECT_EQ(IoOutput(), Texts());
}

TEST_F(MasterThread, WithoutAMonitorAnIoMessageIsNotCopied) {
  PlugCard(5, 0x03);
  qelm.IoQueue->ToQueue(List("a5b1dFB;"));
  RunUntilTaken(*qelm.IoQueue);
  EXPECT_EQ(CardQueue(5).Size(), 1U);
  EXPECT_EQ(MonOutput(), Texts());
}

TEST_F(MasterThread, ExitEndsTheIoSession) {
  const SleepRecord sleeps;
  Connect(qelm.IoInterface);
  Connect(qelm.MonInterface);
  qelm.IoQueue->ToQueue(List("EXIT;"));
  RunUntil([&] { return log.Has("[INF] connection is closed by command on IO interface"); });
  EXPECT_EQ(IoOutput(), Texts{"QELM: Bye Bye...#"});
  EXPECT_EQ(MonOutput(), Texts());
  EXPECT_EQ(CaeReplies(), Texts());
  EXPECT_EQ(qelm.IoInterface->Descriptor.State, 4);
  EXPECT_EQ(qelm.MonInterface->Descriptor.State, 3);
  EXPECT_EQ(sleeps.Seconds(), Texts{"1"});
}

TEST_F(MasterThread, ExitWithAnotherLineEndingIsAnIoMessage) {
  Connect(qelm.IoInterface);
  Connect(qelm.MonInterface);
  for (const char* text : {"EXIT\r\n", "EXIT", "exit;", "EXIT;;", " EXIT;"})
    qelm.IoQueue->ToQueue(List(text));
  RunUntil([&] { return qelm.MonInterface->OutQueue->Size() == 5; });
  EXPECT_EQ(MonOutput(), (Texts{"EXIT\r\n", "EXIT", "exit;", "EXIT;;", " EXIT;"}));
  EXPECT_EQ(
      CaeReplies(),
      (Texts{"COE:Illegal command -> EXIT\r\n\r\n", ">\r\n", "COE:Illegal command -> EXIT\r\n",
             ">\r\n", "COE:Illegal command -> exit\r\n", ">\r\n", "COE:Illegal command -> EXIT\r\n",
             ">\r\n", "COE:Illegal command ->  EXIT\r\n", ">\r\n"}));
  EXPECT_EQ(IoOutput(), Texts());
  EXPECT_EQ(qelm.IoInterface->Descriptor.State, 3);
}

TEST_F(MasterThread, WhatTheMonitorSendsIsDiscarded) {
  for (int i = 0; i < 100; ++i) qelm.MonQueue->ToQueue(List("EXIT;"));
  RunUntil([&] { return qelm.MonQueue->IsEmpty(); });
  EXPECT_EQ(MonOutput(), Texts());
  EXPECT_EQ(CaeReplies(), Texts());
  EXPECT_EQ(qelm.MonInterface->Descriptor.State, 0);
}

TEST_F(MasterThread, ACaeLineIsAnsweredOnCae) {
  qelm.CaeQueue->ToQueue(List("DRVVER\r\n"));
  qelm.CaeQueue->ToQueue(List("help\r\n"));
  RunUntil([&] { return qelm.CaeInterface->OutQueue->Size() == 3; });
  EXPECT_EQ(CaeReplies(),
            (Texts{"CIA: DRIVER VERSION 1.20\r\n", ">\r\n", "CIE: UNKNOWN COMMAND \r\n>\r\n"}));
}

TEST_F(MasterThread, EndsAtASignalBeforeAnythingElse) {
  qelm.CaeQueue->ToQueue(List("DRVVER\r\n"));
  qelm.IoQueue->ToQueue(List("a5b1dFB;"));
  signal = 15;
  qelm.MasterThread();
  EXPECT_EQ(log.Lines(), kStopLines);
  EXPECT_EQ(qelm.CaeQueue->Size(), 1U);
  EXPECT_EQ(qelm.IoQueue->Size(), 1U);
  EXPECT_EQ(signal, 15);
}

TEST_F(MasterThread, EndsAtAnInterruptToo) {
  signal = 2;
  qelm.MasterThread();
  EXPECT_TRUE(log.Has("[INF] signal 2 on MON interface"));
  EXPECT_EQ(log.Lines().back(), "[INF] qelm is stopped by SIGTERM or SIGINT");
}

TEST_F(MasterThread, AnotherSignalIsLoggedAndEndsNothing) {
  signal = 1;
  RunUntil([&] { return log.Count("[INF] signal 1 on serial interface") > 1; });
  EXPECT_GE(log.Count("[INF] signal 1 on CAE interface"), 2);
  EXPECT_EQ(log.Count("[INF] qelm is stopped by SIGTERM or SIGINT"), 1);
}

TEST_F(MasterThread, ASignalClosesTheSerialPort) {
  qelm.SerialInterface->Fd.Adopt(dup(STDERR_FILENO));
  signal = 15;
  qelm.MasterThread();
  EXPECT_TRUE(qelm.SerialInterface->Fd.IsWithdrawn());
  qelm.SerialInterface->Fd.Close();
}
