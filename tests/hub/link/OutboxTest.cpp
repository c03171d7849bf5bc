#include "link/Outbox.h"

#include <gtest/gtest.h>

namespace hub::link {
namespace {

using namespace std::chrono_literals;
using protocol::ControlLcd;
using protocol::LcdControl;
using protocol::SendInfrared;
using protocol::WriteBlock;
using protocol::WriteText;

using Tickets = std::vector<Ticket>;

class OutboxTest : public testing::Test {
 protected:
  OutboxTest() { outbox.SetRound(10ms); }

  Ticket Offer(const protocol::IoCommand& command) { return outbox.Offer(command, now).value(); }
  std::string TakeDue() { return outbox.TakeDue(now); }

  // Whom the echo of this line is for.
  Tickets Echo(std::string_view line) {
    const auto received = outbox.TakeEcho(line);
    return received ? received->tickets : Tickets{};
  }

  // Fills the card's queue so that what comes next is merged.
  void FillCard(uint8_t address) {
    for (size_t i = 0; i < Outbox::kMostWaiting; ++i) Offer(WriteBlock{address, 0, 0});
  }

  // Takes out, and receives, what FillCard has put in.
  void DrainCard(std::string_view line) {
    for (size_t i = 0; i < Outbox::kMostWaiting; ++i) {
      TakeDue();
      EXPECT_EQ(Echo(line).size(), 1U);
      now += 24ms;
    }
  }

  SteadyTime now{1h};
  Outbox outbox;
};

TEST_F(OutboxTest, ACommandGoesAtOnce) {
  Offer(WriteBlock{5, 1, 0xFB});
  EXPECT_EQ(TakeDue(), "a5b1dFB\r\n");
  EXPECT_EQ(TakeDue(), "");
}

TEST_F(OutboxTest, OneCommandACardARoundAndAllCardsInIt) {
  Offer(WriteBlock{5, 0, 0x01});
  Offer(WriteBlock{5, 1, 0x02});
  Offer(WriteBlock{0, 0, 0x80});
  EXPECT_EQ(TakeDue(), "a0b0d80\r\na5b0d01\r\n");
  EXPECT_EQ(outbox.NextDue(), now + 10ms);
  now += 9ms;
  EXPECT_EQ(TakeDue(), "");
  now += 1ms;
  EXPECT_EQ(TakeDue(), "a5b1d02\r\n");
  EXPECT_EQ(outbox.NextDue(), std::nullopt);
}

TEST_F(OutboxTest, ARoundThatBeginsLateEndsInTime) {
  for (uint8_t level = 0; level < 3; ++level) Offer(WriteBlock{5, 0, level});
  TakeDue();
  now += 13ms;
  EXPECT_EQ(TakeDue(), "a5b0d01\r\n");
  EXPECT_EQ(outbox.NextDue(), now + 7ms);
  now += 70ms;  // what a machine that stood still has missed is not made up for at once
  EXPECT_EQ(TakeDue(), "a5b0d02\r\n");
  Offer(WriteBlock{5, 0, 0x03});
  EXPECT_EQ(outbox.NextDue(), now + 5ms);
}

TEST_F(OutboxTest, WhatComesAfterARestHasAWholeRound) {
  Offer(WriteBlock{5, 0, 0x01});
  TakeDue();
  now += 13ms;
  Offer(WriteBlock{5, 0, 0x02});
  Offer(WriteBlock{5, 0, 0x03});
  EXPECT_EQ(TakeDue(), "a5b0d02\r\n");
  EXPECT_EQ(outbox.NextDue(), now + 10ms);
}

TEST_F(OutboxTest, WhatGoesOnLongerThanABurstGetsAMargin) {
  FillCard(5);
  for (size_t i = 0; i < Outbox::kMostWaiting; ++i) {
    TakeDue();
    Echo("a5b0d00");
    Offer(WriteBlock{5, 0, 0});
    EXPECT_EQ(outbox.NextDue(), now + 10ms);
    now += 10ms;
  }
  TakeDue();
  EXPECT_EQ(outbox.NextDue(), now + 12ms);
  EXPECT_EQ(outbox.MergedCount(), 0U);
}

TEST_F(OutboxTest, TheEchoIsTheReceipt) {
  const Ticket ticket = Offer(WriteBlock{5, 1, 0xFB});
  TakeDue();
  EXPECT_EQ(outbox.BytesUnderWay(), 9U);
  EXPECT_EQ(Echo("a3b0d40"), Tickets{});  // a report of an input
  EXPECT_EQ(Echo("a5b1dFB"), Tickets{ticket});
  EXPECT_EQ(Echo("a5b1dFB"), Tickets{});
  EXPECT_EQ(outbox.BytesUnderWay(), 0U);
}

TEST_F(OutboxTest, OfEqualCommandsTheOldestIsReceivedFirst) {
  const Ticket first = Offer(WriteBlock{5, 1, 0xFB});
  const Ticket second = Offer(WriteBlock{5, 1, 0xFB});
  TakeDue();
  now += 10ms;
  TakeDue();
  EXPECT_EQ(Echo("a5b1dFB"), Tickets{first});
  EXPECT_EQ(Echo("a5b1dFB"), Tickets{second});
}

TEST_F(OutboxTest, NeverAreMoreThan255BytesUnderWay) {
  const std::string text(34, 'x');  // with its 11 characters in front and its end, 47 bytes
  for (uint8_t address = 0; address < 8; ++address) Offer(WriteText{address, 0, 0, text});
  TakeDue();
  EXPECT_EQ(outbox.BytesUnderWay(), 5 * 47U);
  EXPECT_EQ(outbox.NextDue(), std::nullopt);  // until an echo makes room
  EXPECT_EQ(Echo("a0lPAp0000t" + text).size(), 1U);
  EXPECT_EQ(TakeDue(), "a5lPAp0000t" + text + "\r\n");
}

TEST_F(OutboxTest, ACardThatHadNoRoomIsFirstNextTime) {
  const std::string text(34, 'x');
  for (uint8_t address = 0; address < 8; ++address) {
    Offer(WriteText{address, 0, 0, text});
    Offer(WriteText{address, 0, 0, text});
  }
  TakeDue();
  for (const char digit : {'0', '1', '2', '3', '4'})
    Echo(std::string("a") + digit + "lPAp0000t" + text);
  now += 10ms;
  EXPECT_TRUE(TakeDue().starts_with("a5lPAp0000t"));
}

TEST_F(OutboxTest, BehindSixtyFourCommandsTheLastValueOfABlockCounts) {
  FillCard(5);
  const Ticket early = Offer(WriteBlock{5, 1, 0x01});
  const Ticket late = Offer(WriteBlock{5, 1, 0x02});
  EXPECT_EQ(outbox.MergedCount(), 1U);
  DrainCard("a5b0d00");
  EXPECT_EQ(TakeDue(), "a5b1d02\r\n");
  EXPECT_EQ(Echo("a5b1d02"), (Tickets{early, late}));
}

TEST_F(OutboxTest, MergedBlocksTakeTurns) {
  FillCard(0);
  for (uint8_t block = 0; block < 3; ++block) Offer(WriteBlock{0, block, 0x01});
  DrainCard("a0b0d00");
  EXPECT_EQ(TakeDue(), "a0b0d01\r\n");
  Offer(WriteBlock{0, 0, 0x02});  // behind those that wait longer
  now += 24ms;
  EXPECT_EQ(TakeDue(), "a0b1d01\r\n");
  now += 24ms;
  EXPECT_EQ(TakeDue(), "a0b2d01\r\n");
  now += 24ms;
  EXPECT_EQ(TakeDue(), "a0b0d02\r\n");
}

TEST_F(OutboxTest, AFloodedCardMergesUntilNothingHasWaitedForARound) {
  FillCard(5);
  Offer(WriteBlock{5, 0, 0x01});
  DrainCard("a5b0d00");
  EXPECT_EQ(TakeDue(), "a5b0d01\r\n");
  Offer(WriteBlock{5, 0, 0x02});
  Offer(WriteBlock{5, 0, 0x03});
  EXPECT_EQ(outbox.MergedCount(), 1U);
  now += 24ms;
  EXPECT_EQ(TakeDue(), "a5b0d03\r\n");
  now += 24ms;
  Offer(WriteBlock{5, 0, 0x04});
  Offer(WriteBlock{5, 0, 0x05});
  EXPECT_EQ(outbox.MergedCount(), 1U);
}

TEST_F(OutboxTest, AFloodedCardGetsALongerRound) {
  FillCard(5);
  Offer(WriteBlock{5, 1, 0x01});
  TakeDue();
  EXPECT_EQ(outbox.NextDue(), now + 24ms);
}

TEST_F(OutboxTest, NoCommandOvertakesAMergedOne) {
  FillCard(5);
  Offer(WriteBlock{5, 1, 0x01});
  TakeDue();  // a place among the first 64 is free again
  Offer(WriteBlock{5, 1, 0x02});
  EXPECT_EQ(outbox.MergedCount(), 1U);
}

TEST_F(OutboxTest, ATextOrACodeTooManyIsRefused) {
  FillCard(14);
  EXPECT_EQ(outbox.Offer(WriteText{14, 0, 0, "x"}, now), std::nullopt);
  EXPECT_EQ(outbox.Offer(ControlLcd{14, LcdControl::kClear}, now), std::nullopt);
  FillCard(9);
  EXPECT_EQ(outbox.Offer(SendInfrared{9, {0x43}}, now), std::nullopt);
  EXPECT_NE(outbox.Offer(WriteText{15, 0, 0, "x"}, now), std::nullopt);  // another card
}

TEST_F(OutboxTest, AtTheEndOfTheSessionWhatWasNotReceivedIsNamed) {
  const Ticket received = Offer(WriteBlock{5, 0, 0x01});
  const Ticket under_way = Offer(WriteBlock{0, 0, 0x01});
  const Ticket waiting = Offer(WriteBlock{5, 1, 0x01});
  TakeDue();
  Echo("a5b0d01");
  const Outbox::Abandoned abandoned = outbox.Abandon();
  ASSERT_EQ(abandoned.written.size(), 1U);
  EXPECT_EQ(abandoned.written[0].tickets, Tickets{under_way});
  ASSERT_EQ(abandoned.never_written.size(), 1U);
  EXPECT_EQ(abandoned.never_written[0].tickets, Tickets{waiting});
  EXPECT_NE(under_way, received);
  EXPECT_EQ(outbox.BytesUnderWay(), 0U);
  EXPECT_EQ(TakeDue(), "");
  const Outbox::Abandoned nothing = outbox.Abandon();
  EXPECT_TRUE(nothing.written.empty() && nothing.never_written.empty());
}

}  // namespace
}  // namespace hub::link
