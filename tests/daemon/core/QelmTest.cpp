// The central object with its threads running.
#include "core/qelm.h"

#include <gtest/gtest.h>

#include <atomic>
#include <memory>

#include "bus/PerifCard.h"
#include "bus/SerialInterface.h"
#include "net/SocketInterface.h"
#include "runtime/Queue.h"
#include "runtime/Shared.h"
#include "kit/Client.h"
#include "kit/Helper.h"
#include "kit/Ports.h"
#include "support/TempLog.h"

namespace {

class Qelm : public testing::Test {
 protected:
  Qelm() : Object(std::make_unique<QELM>(LOGGER(), &Signal)) {
    Object->Logger = Log.Logger();
    Object->Config.ThreadDelay = 51;
    Object->Config.EnablePoll = true;
    Configure(Object->Config.CaeDescriptor, "CAE");
    Configure(Object->Config.IoDescriptor, "IO");
    Configure(Object->Config.MonDescriptor, "MON");
  }

  static void Configure(INTERFACE_DESCRIPTOR& descriptor, const char* name) {
    descriptor.Name = name;
    descriptor.Port = FreePort();
    descriptor.ThreadDelay = 51;
  }

  int Signal = kNoSignal;
  TempLog Log;
  std::unique_ptr<QELM> Object;
};

constexpr const char* kNoDevice = "[ERR] ttyUSB devices couldn't be found";

}  // namespace

TEST_F(Qelm, StartsWithEmptyQueuesAndSeventeenEmptyCards) {
  for (QEQUEUE* queue : {Object->IoQueue, Object->CaeQueue, Object->MonQueue, Object->SerialQueue})
    EXPECT_TRUE(queue->IsEmpty());
  for (int i = 0; i < 17; ++i) {
    EXPECT_EQ(Object->Cards[i].Name(), "EMPTY");
    EXPECT_EQ(Object->Cards[i].IoKind, 3);
    EXPECT_EQ(Object->Cards[i].SamplesPerAverage, 6);
    EXPECT_EQ(Object->Cards[i].Address, 0);
    EXPECT_EQ(Object->Cards[i].SampleCount, 0);
    EXPECT_TRUE(Object->Cards[i].CopyPollFrame().empty());
  }
  EXPECT_EQ(Object->SignalFlag, &Signal);
  EXPECT_EQ(Object->CaeInterface, nullptr);
  EXPECT_EQ(Object->IoInterface, nullptr);
  EXPECT_EQ(Object->MonInterface, nullptr);
  EXPECT_EQ(Object->SerialInterface, nullptr);
  EXPECT_EQ(Object->SelfTestState, 0x00);
  EXPECT_EQ(Object->InitLightState, 0x00);
}

TEST_F(Qelm, WiresTheInterfacesToItsQueues) {
  Object->InitInterfaces();
  EXPECT_EQ(Object->CaeInterface->InQueue, Object->CaeQueue);
  EXPECT_EQ(Object->IoInterface->InQueue, Object->IoQueue);
  EXPECT_EQ(Object->MonInterface->InQueue, Object->MonQueue);
  EXPECT_EQ(Object->CaeInterface->DataMode, 2);
  EXPECT_EQ(Object->SerialInterface->OutQueue, Object->SerialQueue);
  EXPECT_EQ(Object->SerialInterface->Cards, Object->Cards);
  EXPECT_EQ(Object->SerialInterface->DeviceMode, 2);
  EXPECT_EQ(LoadShared(Object->SerialInterface->EnablePoll), 1);
  EXPECT_EQ(Object->SerialInterface->AutoDiscover, 0);
  EXPECT_EQ(LoadShared(Object->SerialInterface->ThreadDelay), 51);
  for (QEQUEUE* queue : Object->SerialInterface->CardQueues) EXPECT_NE(queue, nullptr);
}

TEST_F(Qelm, StartsFourThreadsThatWork) {
  Object->InitInterfaces();
  EXPECT_TRUE(Log.WaitFor("[INF] CAE interface is waiting for incoming connection"));
  EXPECT_TRUE(Log.WaitFor("[INF] IO interface is waiting for incoming connection"));
  EXPECT_TRUE(Log.WaitFor("[INF] MON interface is waiting for incoming connection"));
  EXPECT_TRUE(Log.WaitFor(kNoDevice));
}

TEST_F(Qelm, APortThatCannotBeBoundDoesNotStopTheWiring) {
  Object->Config.IoDescriptor.Port = Object->Config.CaeDescriptor.Port;
  Object->InitInterfaces();
  EXPECT_TRUE(Log.Has("[ERR] couldn't bind socket forIO interface"));
  EXPECT_TRUE(Log.WaitFor("[INF] MON interface is waiting for incoming connection"));
  EXPECT_TRUE(Log.WaitFor(kNoDevice));
}

TEST_F(Qelm, IsTornDownWithoutInterfaces) { Object.reset(); }

TEST_F(Qelm, IsTornDownAsItsThreadsBegin) {
  for (int i = 0; i < 10; ++i) {
    auto other = std::make_unique<QELM>(LOGGER(), &Signal);
    other->Config = Object->Config;
    other->InitInterfaces();
  }
}

TEST_F(Qelm, IsTornDownWhileClientsAreServed) {
  Object->InitInterfaces();
  Client cae(Object->Config.CaeDescriptor.Port);
  Client io(Object->Config.IoDescriptor.Port);
  io.ExpectBytes("QELM IO interface is ready\r\n\r");
  cae.ExpectBytes("QELM CAE interface is ready\r\n(Type HELP for help)\r\n>\r\n\r");
  std::atomic<bool> is_over{false};
  Helper typing([&] {
    while (!is_over) io.TrySend("a0b0d00\r\n");
  });
  Object.reset();
  is_over = true;
  typing.Join();
  io.ExpectClosed();
  cae.ExpectClosed();
}

TEST_F(Qelm, AnswersOnCaeWithItsSeparator) {
  Object->Config.CaeDescriptor.OutSeparator = "<end>";
  Object->InitInterfaces();
  Object->ReplyOnCae("text");
  EXPECT_EQ(Convert_QList2String(Object->CaeInterface->OutQueue->DeQueue()), "text<end>");
}
