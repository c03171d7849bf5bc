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
    Helper loop([this] { Qelm.MasterThread(); });
    EXPECT_TRUE(WaitUntil(holds));
    StoreShared(Signal, 15);
  }

  void RunUntilTaken(QEQUEUE& queue) {
    // Two more markers show that the pass that took the last entry is over.
    for (int i = 0; i < 2; ++i) queue.ToQueue(kMarker);
    RunUntil([&] { return queue.IsEmpty(); });
  }

  const QList kMarker = TextBytes(";");  // no command, and no report to anybody
};

const Texts kStopLines{"[INF] signal 15 on CAE interface", "[INF] signal 15 on IO interface",
                       "[INF] signal 15 on MON interface", "[INF] signal 15 on serial interface",
                       "[INF] qelm is stopped by SIGTERM or SIGINT"};

}  // namespace

TEST_F(MasterThread, AReportGoesToTheIoClientAndToTheMonitor) {
  Connect(Qelm.IoInterface);
  Connect(Qelm.MonInterface);
  Qelm.SerialQueue->ToQueue(TextBytes("a3b0d40"));
  Qelm.SerialQueue->ToQueue(TextBytes("a3b1d01"));
  RunUntil([&] { return Qelm.MonInterface->OutQueue->Size() == 2; });
  EXPECT_EQ(IoOutput(), (Texts{"a3b0d40#", "a3b1d01#"}));
  EXPECT_EQ(MonOutput(), (Texts{"a3b0d40#", "a3b1d01#"}));
  EXPECT_EQ(CaeReplies(), Texts());
}

TEST_F(MasterThread, WithoutAMonitorAReportGoesToTheIoClientAlone) {
  Connect(Qelm.IoInterface);
  Qelm.SerialQueue->ToQueue(TextBytes("a3b0d40"));
  RunUntil([&] { return !Qelm.IoInterface->OutQueue->IsEmpty(); });
  EXPECT_EQ(IoOutput(), Texts{"a3b0d40#"});
  EXPECT_EQ(MonOutput(), Texts());
}

TEST_F(MasterThread, WithoutAnIoClientAReportReachesNobody) {
  Connect(Qelm.MonInterface);
  Qelm.SerialQueue->ToQueue(TextBytes("a3b0d40"));
  RunUntil([&] { return Qelm.SerialQueue->IsEmpty(); });
  EXPECT_EQ(IoOutput(), Texts());
  EXPECT_EQ(MonOutput(), Texts());
}

TEST_F(MasterThread, AnIoMessageBecomesAFrameAndACopyForTheMonitor) {
  PlugCard(5, 0x03);
  Connect(Qelm.MonInterface);
  Qelm.IoQueue->ToQueue(TextBytes("a5b1dFB;"));
  RunUntil([&] { return !Qelm.MonInterface->OutQueue->IsEmpty(); });
  EXPECT_EQ(CardQueue(5).DeQueue(), Bytes({0x10, 0x05, 0x02, 0xFF, 0xFB}));
  EXPECT_EQ(MonOutput(), Texts{"a5b1dFB;"});
  EXPECT_EQ(IoOutput(), Texts());
}

TEST_F(MasterThread, WithoutAMonitorAnIoMessageIsNotCopied) {
  PlugCard(5, 0x03);
  Qelm.IoQueue->ToQueue(TextBytes("a5b1dFB;"));
  RunUntilTaken(*Qelm.IoQueue);
  EXPECT_EQ(CardQueue(5).Size(), 1U);
  EXPECT_EQ(MonOutput(), Texts());
}

TEST_F(MasterThread, ExitEndsTheIoSession) {
  const SleepRecord sleeps;
  Connect(Qelm.IoInterface);
  Connect(Qelm.MonInterface);
  Qelm.IoQueue->ToQueue(TextBytes("EXIT;"));
  RunUntil([&] { return Log.Has("[INF] connection is closed by command on IO interface"); });
  EXPECT_EQ(IoOutput(), Texts{"QELM: Bye Bye...#"});
  EXPECT_EQ(MonOutput(), Texts());
  EXPECT_EQ(CaeReplies(), Texts());
  EXPECT_EQ(Qelm.IoInterface->Descriptor.State, 4);
  EXPECT_EQ(Qelm.MonInterface->Descriptor.State, 3);
  EXPECT_EQ(sleeps.Seconds(), Texts{"1"});
}

TEST_F(MasterThread, ExitWithAnotherLineEndingIsAnIoMessage) {
  Connect(Qelm.IoInterface);
  Connect(Qelm.MonInterface);
  for (const char* text : {"EXIT\r\n", "EXIT", "exit;", "EXIT;;", " EXIT;"})
    Qelm.IoQueue->ToQueue(TextBytes(text));
  RunUntil([&] { return Qelm.MonInterface->OutQueue->Size() == 5; });
  EXPECT_EQ(MonOutput(), (Texts{"EXIT\r\n", "EXIT", "exit;", "EXIT;;", " EXIT;"}));
  EXPECT_EQ(
      CaeReplies(),
      (Texts{"COE:Illegal command -> EXIT\r\n\r\n", ">\r\n", "COE:Illegal command -> EXIT\r\n",
             ">\r\n", "COE:Illegal command -> exit\r\n", ">\r\n", "COE:Illegal command -> EXIT\r\n",
             ">\r\n", "COE:Illegal command ->  EXIT\r\n", ">\r\n"}));
  EXPECT_EQ(IoOutput(), Texts());
  EXPECT_EQ(Qelm.IoInterface->Descriptor.State, 3);
}

TEST_F(MasterThread, WhatTheMonitorSendsIsDiscarded) {
  for (int i = 0; i < 100; ++i) Qelm.MonQueue->ToQueue(TextBytes("EXIT;"));
  RunUntil([&] { return Qelm.MonQueue->IsEmpty(); });
  EXPECT_EQ(MonOutput(), Texts());
  EXPECT_EQ(CaeReplies(), Texts());
  EXPECT_EQ(Qelm.MonInterface->Descriptor.State, 0);
}

TEST_F(MasterThread, ACaeLineIsAnsweredOnCae) {
  Qelm.CaeQueue->ToQueue(TextBytes("DRVVER\r\n"));
  Qelm.CaeQueue->ToQueue(TextBytes("help\r\n"));
  RunUntil([&] { return Qelm.CaeInterface->OutQueue->Size() == 3; });
  EXPECT_EQ(CaeReplies(),
            (Texts{"CIA: DRIVER VERSION 1.20\r\n", ">\r\n", "CIE: UNKNOWN COMMAND \r\n>\r\n"}));
}

TEST_F(MasterThread, EndsAtASignalBeforeAnythingElse) {
  Qelm.CaeQueue->ToQueue(TextBytes("DRVVER\r\n"));
  Qelm.IoQueue->ToQueue(TextBytes("a5b1dFB;"));
  Signal = 15;
  Qelm.MasterThread();
  EXPECT_EQ(Log.Lines(), kStopLines);
  EXPECT_EQ(Qelm.CaeQueue->Size(), 1U);
  EXPECT_EQ(Qelm.IoQueue->Size(), 1U);
  EXPECT_EQ(Signal, 15);
}

TEST_F(MasterThread, EndsAtAnInterruptToo) {
  Signal = 2;
  Qelm.MasterThread();
  EXPECT_TRUE(Log.Has("[INF] signal 2 on MON interface"));
  EXPECT_EQ(Log.Lines().back(), "[INF] qelm is stopped by SIGTERM or SIGINT");
}

TEST_F(MasterThread, AnotherSignalIsLoggedAndEndsNothing) {
  Signal = 1;
  RunUntil([&] { return Log.Count("[INF] signal 1 on serial interface") > 1; });
  EXPECT_GE(Log.Count("[INF] signal 1 on CAE interface"), 2);
  EXPECT_EQ(Log.Count("[INF] qelm is stopped by SIGTERM or SIGINT"), 1);
}

TEST_F(MasterThread, ASignalClosesTheSerialPort) {
  Qelm.SerialInterface->Fd.Adopt(dup(STDERR_FILENO));
  Signal = 15;
  Qelm.MasterThread();
  EXPECT_TRUE(Qelm.SerialInterface->Fd.IsWithdrawn());
  Qelm.SerialInterface->Fd.Close();
}
