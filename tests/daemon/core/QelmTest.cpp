// The central object with its threads running.
#include "core/qelm.h"

#include <gtest/gtest.h>

#include <atomic>
#include <memory>

#include "bus/PerifCard.h"
#include "bus/SerialInterface.h"
#include "kit/Client.h"
#include "kit/Helper.h"
#include "kit/Ports.h"
#include "net/SocketInterface.h"
#include "runtime/Queue.h"
#include "runtime/Shared.h"
#include "support/TempLog.h"

namespace {

class Qelm : public testing::Test {
 protected:
  Qelm() : qelm(std::make_unique<QELM>(LOGGER(), &signal)) {
    qelm->Logger = log.Logger();
    qelm->Config.ThreadDelay = 51;
    qelm->Config.EnablePoll = true;
    Configure(qelm->Config.CaeDescriptor, "CAE");
    Configure(qelm->Config.IoDescriptor, "IO");
    Configure(qelm->Config.MonDescriptor, "MON");
  }

  static void Configure(INTERFACE_DESCRIPTOR& descriptor, const char* name) {
    descriptor.Name = name;
    descriptor.Port = FreePort();
    descriptor.ThreadDelay = 51;
  }

  int signal = kNoSignal;
  TempLog log;
  std::unique_ptr<QELM> qelm;
};

constexpr const char* kNoDevice = "[ERR] ttyUSB devices couldn't be found";

}  // namespace

TEST_F(Qelm, StartsWithEmptyQueuesAndSeventeenEmptyCards) {
  for (QEQUEUE* queue : {qelm->IoQueue, qelm->CaeQueue, qelm->MonQueue, qelm->SerialQueue})
    EXPECT_TRUE(queue->IsEmpty());
  for (int i = 0; i < 17; ++i) {
    EXPECT_EQ(qelm->Cards[i].Name(), "EMPTY");
    EXPECT_EQ(qelm->Cards[i].IoKind, 3);
    EXPECT_EQ(qelm->Cards[i].SamplesPerAverage, 6);
    EXPECT_EQ(qelm->Cards[i].Address, 0);
    EXPECT_EQ(qelm->Cards[i].SampleCount, 0);
    EXPECT_TRUE(qelm->Cards[i].CopyPollFrame().empty());
  }
  EXPECT_EQ(qelm->SignalFlag, &signal);
  EXPECT_EQ(qelm->CaeInterface, nullptr);
  EXPECT_EQ(qelm->IoInterface, nullptr);
  EXPECT_EQ(qelm->MonInterface, nullptr);
  EXPECT_EQ(qelm->SerialInterface, nullptr);
  EXPECT_EQ(qelm->SelfTestState, 0x00);
  EXPECT_EQ(qelm->InitLightState, 0x00);
}

TEST_F(Qelm, WiresTheInterfacesToItsQueues) {
  qelm->InitInterfaces();
  EXPECT_EQ(qelm->CaeInterface->InQueue, qelm->CaeQueue);
  EXPECT_EQ(qelm->IoInterface->InQueue, qelm->IoQueue);
  EXPECT_EQ(qelm->MonInterface->InQueue, qelm->MonQueue);
  EXPECT_EQ(qelm->CaeInterface->DataMode, 2);
  EXPECT_EQ(qelm->SerialInterface->OutQueue, qelm->SerialQueue);
  EXPECT_EQ(qelm->SerialInterface->Cards, qelm->Cards);
  EXPECT_EQ(qelm->SerialInterface->DeviceMode, 2);
  EXPECT_EQ(LoadShared(qelm->SerialInterface->EnablePoll), 1);
  EXPECT_EQ(qelm->SerialInterface->AutoDiscover, 0);
  EXPECT_EQ(LoadShared(qelm->SerialInterface->ThreadDelay), 51);
  for (QEQUEUE* queue : qelm->SerialInterface->CardQueues) EXPECT_NE(queue, nullptr);
}

TEST_F(Qelm, StartsFourThreadsThatWork) {
  qelm->InitInterfaces();
  EXPECT_TRUE(log.WaitFor("[INF] CAE interface is waiting for incoming connection"));
  EXPECT_TRUE(log.WaitFor("[INF] IO interface is waiting for incoming connection"));
  EXPECT_TRUE(log.WaitFor("[INF] MON interface is waiting for incoming connection"));
  EXPECT_TRUE(log.WaitFor(kNoDevice));
}

TEST_F(Qelm, APortThatCannotBeBoundDoesNotStopTheWiring) {
  qelm->Config.IoDescriptor.Port = qelm->Config.CaeDescriptor.Port;
  qelm->InitInterfaces();
  EXPECT_TRUE(log.Has("[ERR] couldn't bind socket forIO interface"));
  EXPECT_TRUE(log.WaitFor("[INF] MON interface is waiting for incoming connection"));
  EXPECT_TRUE(log.WaitFor(kNoDevice));
}

TEST_F(Qelm, IsTornDownWithoutInterfaces) { qelm.reset(); }

TEST_F(Qelm, IsTornDownAsItsThreadsBegin) {
  for (int i = 0; i < 10; ++i) {
    auto other = std::make_unique<QELM>(LOGGER(), &signal);
    other->Config = qelm->Config;
    other->InitInterfaces();
  }
}

TEST_F(Qelm, IsTornDownWhileClientsAreServed) {
  qelm->InitInterfaces();
  Client cae(qelm->Config.CaeDescriptor.Port);
  Client io(qelm->Config.IoDescriptor.Port);
  io.ExpectBytes("QELM IO interface is ready\r\n\r");
  cae.ExpectBytes("QELM CAE interface is ready\r\n(Type HELP for help)\r\n>\r\n\r");
  std::atomic<bool> is_over{false};
  Helper typing([&] {
    while (!is_over) io.TrySend("a0b0d00\r\n");
  });
  qelm.reset();
  is_over = true;
  typing.Join();
  io.ExpectClosed();
  cae.ExpectClosed();
}

TEST_F(Qelm, AnswersOnCaeWithItsSeparator) {
  qelm->Config.CaeDescriptor.OutSeparator = "<end>";
  qelm->InitInterfaces();
  qelm->ReplyOnCae("text");
  EXPECT_EQ(Convert_QList2String(qelm->CaeInterface->OutQueue->DeQueue()), "text<end>");
}
