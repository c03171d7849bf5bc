// A serial interface without its rounds: its methods are called by the test.
#pragma once

#include <gtest/gtest.h>

#include <array>
#include <string>
#include <vector>

#include "bus/SerialInterface.h"
#include "support/Bytes.h"
#include "support/MockBus.h"
#include "support/TempLog.h"

class SerialTest : public testing::Test {
 protected:
  SerialTest() {
    Serial.Logger = Log.Logger();
    Serial.OutQueue = &Reports;
    Serial.Cards = Cards.data();
    Serial.ThreadDelay = 0;
    Serial.DeviceMode = kNamedDevice;
    Serial.DeviceName = Bus.Device();
    for (QEQUEUE*& queue : Serial.CardQueues) queue = new QEQUEUE;
    for (PERIFCARD& card : Cards) card.clearPerifCard();
  }

  // The link as it is once the adapter has been found.
  void Connect() {
    Serial.Fd.Adopt(Bus.Open());
    Serial.LinkState = kLinkUp;
  }

  QEQUEUE& Queue(std::size_t index) { return *Serial.CardQueues[index]; }
  void Round() { EXPECT_TRUE(Serial.OnTask()); }

  // One round in which the card's frame is answered by this reply.
  void RoundWithReply(std::size_t index, const QList& reply) {
    Queue(index).ToQueue(Bytes({0x20, 0x01}));
    Bus.ExpectFrame(Bytes({0x20, 0x01})).Reply(reply);
    Round();
  }

  std::vector<std::string> TakeReports() { return TakeTexts(Reports); }

  TempLog Log;
  MockBus Bus;
  QEQUEUE Reports;
  std::array<PERIFCARD, 17> Cards;
  SERIAL_INTERFACE Serial;
};

using Texts = std::vector<std::string>;
