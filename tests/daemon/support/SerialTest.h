// A serial interface without its rounds: its methods are called by the test.
#pragma once

#include <gtest/gtest.h>

#include <array>
#include <string>
#include <vector>

#include "bus/SerialInterface.h"
#include "support/Lists.h"
#include "support/MockBus.h"
#include "support/TempLog.h"

class SerialTest : public testing::Test {
 protected:
  SerialTest() {
    serial.Logger = log.Logger();
    serial.OutQueue = &reports;
    serial.Cards = cards.data();
    serial.ThreadDelay = 0;
    serial.DeviceMode = kNamedDevice;
    serial.DeviceName = bus.Device();
    for (QEQUEUE*& queue : serial.CardQueues) queue = new QEQUEUE;
    for (PERIFCARD& card : cards) card.clearPerifCard();
  }

  // The link as it is once the adapter has been found.
  void Connect() {
    serial.Fd.Adopt(bus.Open());
    serial.LinkState = kLinkUp;
  }

  QEQUEUE& Queue(std::size_t index) { return *serial.CardQueues[index]; }
  void Round() { EXPECT_TRUE(serial.OnTask()); }

  // One round in which the card's frame is answered by this reply.
  void RoundWithReply(std::size_t index, const QList& reply) {
    Queue(index).ToQueue(List({0x20, 0x01}));
    bus.ExpectFrame(List({0x20, 0x01})).Reply(reply);
    Round();
  }

  std::vector<std::string> TakeReports() { return TakeTexts(reports); }

  TempLog log;
  MockBus bus;
  QEQUEUE reports;
  std::array<PERIFCARD, 17> cards;
  SERIAL_INTERFACE serial;
};

using Texts = std::vector<std::string>;
