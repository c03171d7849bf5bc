// The other boards by what they say: in any order, with lies and floods, until they are gone.
#include "boards/Boards.h"

#include <gtest/gtest.h>

#include <chrono>

namespace hub::boards {
namespace {

constexpr char kShed[] =
    R"({"id":"8c01d2ee","name":"Shed","version":"0.3.0","daemon":{"state":"up"},)"
    R"("adapter":{"state":"up"},"cards":[)"
    R"({"address":"5","kind":"digital-output","name":"Relays","state":"present"},)"
    R"({"address":"F","kind":"analogue-input","name":null,"state":"present"}]})";

class BoardsTest : public testing::Test {
 protected:
  BoardsTest() { boards.Use(true); }

  Boards::Turn Say(const std::string& topic, const std::string& payload) {
    return boards.Take("qelm/" + topic, payload, payload.size(), now);
  }
  void Begin() {
    Say("shed/status", "online");
    Say("shed/bus", kShed);
    boards.TakeChanges();
  }
  const Board& Shed() const { return *boards.Find("shed"); }
  const Channel& ChannelAt(unsigned address, unsigned number) const {
    return Shed().cards.at(address).channels.at(number);
  }
  // Nothing is taken from it, and its row says why.
  void ExpectIgnored(const std::string& topic, const std::string& payload, const std::string& why) {
    const uint64_t before = Shed().ignored;
    Say(topic, payload);
    EXPECT_EQ(Shed().ignored, before + 1) << topic;
    EXPECT_EQ(Shed().ignored_why, why);
  }
  // A command that waits for the channel 5.0 to be on.
  Order LampOn() {
    return {.board = "shed",
            .topic = "qelm/shed/5/0/set",
            .is_shown =
                [](const Board& board) {
                  return board.cards[5].channels.at(0).value == model::Value(true);
                },
            .ended = [this] { ++ended; }};
  }

  Boards boards;
  model::Time now{std::chrono::hours(1)};
  int ended = 0;
};

TEST_F(BoardsTest, OneThatTellsOfItselfIsThere) {
  EXPECT_EQ(Say("shed/status", "online"), Boards::Turn::kCame);
  EXPECT_EQ(Say("shed/bus", kShed), Boards::Turn::kNone);
  Say("shed/5/0", "ON");
  Say("shed/F/3", "2.5");
  Say("shed/F/status", "offline");
  EXPECT_TRUE(Shed().IsOnline());
  EXPECT_EQ(Shed().identity.name, "Shed");
  EXPECT_EQ(Shed().cards[5].name, "Relays");
  EXPECT_EQ(Shed().cards[5].channels.size(), 16U);
  EXPECT_EQ(ChannelAt(5, 0).value, model::Value(true));
  EXPECT_EQ(ChannelAt(0xF, 3).value, model::Value(2.5));
  EXPECT_EQ(Shed().cards[0xF].answers, false);
  EXPECT_EQ(Shed().ignored, 0U);
}

TEST_F(BoardsTest, TopicsMayComeInAnyOrder) {
  Say("shed/5/15", "ON");
  Say("shed/F/3", "OFF");  // not what the card turns out to have
  Say("shed/3/0", "ON");   // of no card
  Say("shed/bus", kShed);
  EXPECT_FALSE(Shed().IsOnline());
  EXPECT_EQ(ChannelAt(5, 15).value, model::Value(true));
  EXPECT_EQ(ChannelAt(0xF, 3).value, model::Value());
  EXPECT_EQ(Shed().cards[3].kind, nullptr);
  EXPECT_EQ(Say("shed/status", "online"), Boards::Turn::kCame);
}

TEST_F(BoardsTest, WhatIsStaleStays) {
  Begin();
  Say("shed/5/0", "ON");
  now += std::chrono::minutes(1);
  EXPECT_EQ(Say("shed/status", "offline"), Boards::Turn::kWent);
  EXPECT_FALSE(Shed().IsOnline());
  EXPECT_EQ(Shed().since, now);
  EXPECT_EQ(ChannelAt(5, 0).value, model::Value(true));
  EXPECT_EQ(Say("shed/status", "online"), Boards::Turn::kCame);
}

TEST_F(BoardsTest, TheBrokersAbsenceIsNobodysGoing) {
  Begin();
  now += std::chrono::minutes(1);
  boards.LoseAll(now);
  EXPECT_FALSE(Shed().IsOnline());
  EXPECT_EQ(Shed().since, now);
  EXPECT_EQ(Say("shed/status", "online"), Boards::Turn::kNone);
  EXPECT_TRUE(Shed().IsOnline());
  boards.LoseAll(now);
  EXPECT_EQ(Say("shed/status", "offline"), Boards::Turn::kWent);
}

TEST_F(BoardsTest, OneThatMovesIsForgotten) {
  Begin();
  EXPECT_EQ(Say("shed/status", ""), Boards::Turn::kWent);
  EXPECT_EQ(boards.Find("shed"), nullptr);
  for (const char* topic : {"shed/bus", "shed/5/0", "shed/5/status", "shed/E/glass"})
    Say(topic, "");
  EXPECT_TRUE(boards.All().empty());
  ASSERT_TRUE(boards.HasChanges());
  EXPECT_TRUE(boards.At(boards.TakeChanges().back().board)->is_gone);
}

TEST_F(BoardsTest, LiesAreCountedInItsOwnRow) {
  Begin();
  Say("attic/status", "online");
  ExpectIgnored("shed/bus", "{", "a bus that is no such JSON");
  ExpectIgnored("shed/bus", std::string(65537, ' '), "a payload of 65537 bytes");
  ExpectIgnored("shed/5/0", std::string(1025, '1'), "a payload of 1025 bytes");
  ExpectIgnored("shed/status", "on fire", "a status that is not known");
  ExpectIgnored("shed/5/status", "on fire", "a card's status that is not known");
  ExpectIgnored("shed/5/0", "7", "a value that the channel cannot have");
  ExpectIgnored("shed/F/0", "ON", "a value that the channel cannot have");
  ExpectIgnored("shed/F/0", "hello", "a value that is none");
  ExpectIgnored("shed/F/6", "7", "a channel that the card has not");
  ExpectIgnored("shed/E/glass", "[]", "a glass that is no such JSON");
  ExpectIgnored("shed/error", "[]", "an error that is no such JSON");
  ExpectIgnored("shed/dreams", "7", "a topic that is not known");
  ExpectIgnored("shed/G/0", "7", "a topic of no card");
  EXPECT_EQ(Shed().identity.name, "Shed");
  EXPECT_EQ(boards.Find("attic")->ignored, 0U);
}

// The length of a payload that was not kept is all that is known of it.
TEST_F(BoardsTest, TenMegabytesAreALengthOnly) {
  Begin();
  boards.Take("qelm/shed/bus", "", 10'000'000, now);
  EXPECT_EQ(Shed().ignored_why, "a payload of 10000000 bytes");
  EXPECT_EQ(Shed().identity.name, "Shed");
}

TEST_F(BoardsTest, CountlessTopicsMakeNoMoreOfIt) {
  Begin();
  for (int i = 16; i < 100'016; ++i) Say("shed/5/" + std::to_string(i), "ON");
  EXPECT_EQ(Shed().ignored, 100'000U);
  EXPECT_EQ(Shed().cards[5].channels.size(), 16U);
  EXPECT_EQ(boards.All().size(), 1U);
  EXPECT_EQ(boards.TakeChanges().size(), 1U);
}

TEST_F(BoardsTest, ManyNamesPushNoneOutThatIsThere) {
  Begin();
  for (int i = 0; i < 5000; ++i) Say("x" + std::to_string(i) + "/status", "offline");
  EXPECT_EQ(boards.All().size(), 1000U);
  EXPECT_TRUE(Shed().IsOnline());
  EXPECT_EQ(Shed().identity.name, "Shed");
}

TEST_F(BoardsTest, NamesWithoutABusKeepNoNewcomerOut) {
  for (int i = 0; i < 1000; ++i) Say("x" + std::to_string(i) + "/status", "online");
  Begin();
  EXPECT_EQ(Shed().identity.name, "Shed");
  for (int i = 0; i < 1000; ++i) Say("y" + std::to_string(i) + "/status", "online");
  Say("shed/status", "offline");
  for (int i = 0; i < 1000; ++i) Say("z" + std::to_string(i) + "/status", "online");
  EXPECT_EQ(Shed().identity.name, "Shed");  // stale, but known
}

TEST_F(BoardsTest, WhatOnlyAnswersMakesNoBoard) {
  Say("shed/error", "{}");
  Say("shed/rates", "{}");
  Say("shed/8/event", "{}");
  Say("shed/nonsense", "7");
  EXPECT_EQ(boards.Find("shed"), nullptr);
}

TEST_F(BoardsTest, ACommandIsShownByItsState) {
  Begin();
  std::string sent;
  boards.SendBy([&](std::string topic, std::string payload) { sent = topic + ' ' + payload; });
  Order order = LampOn();
  ASSERT_TRUE(boards.Enter(order, "ON"));
  EXPECT_EQ(sent, "qelm/shed/5/0/set ON");
  Say("shed/5/1", "ON");
  Say("attic/5/0", "ON");
  EXPECT_EQ(ended, 0);
  Say("shed/5/0", "ON");
  EXPECT_EQ(order.outcome, Order::Outcome::kShown);
  EXPECT_EQ(ended, 1);
  boards.Leave(order);
}

TEST_F(BoardsTest, ACommandIsRefusedByItsError) {
  Begin();
  Order order = LampOn();
  Order later = LampOn();
  ASSERT_TRUE(boards.Enter(order, "ON"));
  ASSERT_TRUE(boards.Enter(later, "ON"));
  Say("shed/error", R"({"topic":"qelm/shed/5/1/set","status":404,"detail":"other"})");
  EXPECT_EQ(ended, 0);
  Say("shed/error", R"({"topic":"qelm/shed/5/0/set","status":503,"detail":"no daemon"})");
  EXPECT_EQ(order.outcome, Order::Outcome::kRefused);
  EXPECT_EQ(order.complaint.detail, "no daemon");
  EXPECT_EQ(later.outcome, Order::Outcome::kUnderWay);
  boards.Leave(order);
  boards.Leave(later);
}

TEST_F(BoardsTest, ACommandIsLostWithItsBoard) {
  for (const char* status : {"offline", ""}) {
    Begin();
    Order order = LampOn();
    ASSERT_TRUE(boards.Enter(order, "ON"));
    Say("shed/status", status);
    EXPECT_EQ(order.outcome, Order::Outcome::kLost) << status;
    boards.Leave(order);
  }
}

TEST_F(BoardsTest, SixtyFourCommandsWait) {
  Begin();
  std::vector<Order> orders(65, LampOn());
  for (size_t i = 0; i < 64; ++i) ASSERT_TRUE(boards.Enter(orders[i], "ON"));
  EXPECT_FALSE(boards.Enter(orders[64], "ON"));
  for (Order& order : orders) boards.Leave(order);
}

TEST_F(BoardsTest, SwitchedOffItForgets) {
  Begin();
  boards.Use(false);
  EXPECT_TRUE(boards.All().empty());
}

}  // namespace
}  // namespace hub::boards
