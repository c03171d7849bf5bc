#include "model/Bus.h"

#include <gtest/gtest.h>

#include "hub/CardsOfEachKind.h"

namespace hub::model {
namespace {

using std::chrono::seconds;

constexpr unsigned kServoAt = 0x0;
constexpr unsigned kInputAt = 0x3;
constexpr unsigned kOutputAt = 0x5;
constexpr unsigned kKeysAt = 0x8;
constexpr unsigned kInfraredAt = 0x9;
constexpr unsigned kGlassAt = 0xE;
constexpr unsigned kKnobsAt = 0xF;

class BusTest : public testing::Test {
 protected:
  BusTest() {
    names = CardsOfEachKind();
    bus.SetCards(names);
    bus.Publish();
    bus.Listen([this](const Change& change) { changes.push_back(change); });
  }

  void Report(unsigned address, unsigned block, unsigned value) {
    bus.TakeInput(
        {static_cast<uint8_t>(address), static_cast<uint8_t>(block), static_cast<uint8_t>(value)},
        now);
  }

  void Send(const protocol::IoCommand& command) { bus.TakeOutput(command, now); }

  const Channel& At(unsigned address, unsigned number) { return bus.At(address)->channels[number]; }

  // What was published since the last call.
  std::vector<Change> Published() {
    bus.Publish();
    return std::exchange(changes, {});
  }

  Time now{seconds(1'000'000)};
  protocol::CardNames names;
  Bus bus{"3f9a21c0"};
  std::vector<Change> changes;
};

TEST_F(BusTest, AnEmptyPlaceHasNoCard) {
  EXPECT_EQ(bus.At(0x1), nullptr);
  EXPECT_EQ(bus.At(16), nullptr);
}

TEST_F(BusTest, ACardBringsItsChannelsAndKnowsNothingOfThem) {
  ASSERT_NE(bus.At(kOutputAt), nullptr);
  EXPECT_EQ(bus.At(kOutputAt)->channels.size(), 16U);
  EXPECT_FALSE(At(kOutputAt, 0).IsKnown());
  EXPECT_TRUE(At(kOutputAt, 0).assumed);
  EXPECT_FALSE(At(kInputAt, 0).assumed);
  EXPECT_FALSE(At(kInfraredAt, 0).assumed);
  EXPECT_EQ(bus.At(kGlassAt)->channels.size(), 0U);
  EXPECT_EQ(bus.At(kGlassAt)->glass->Rows().size(), 4U);
}

TEST_F(BusTest, ABlockOfLinesIsEightChannels) {
  Report(kInputAt, 1, 0x41);
  EXPECT_EQ(At(kInputAt, 8).value, Value(true));
  EXPECT_EQ(At(kInputAt, 9).value, Value(false));
  EXPECT_EQ(At(kInputAt, 14).value, Value(true));
  EXPECT_EQ(At(kInputAt, 14).since, now);
  EXPECT_FALSE(At(kInputAt, 0).IsKnown());
}

TEST_F(BusTest, OnlyWhatHasChangedIsPublished) {
  Report(kInputAt, 0, 0x00);
  Published();
  Report(kInputAt, 0, 0x40);
  const std::vector<Change> published = Published();
  ASSERT_EQ(published.size(), 1U);
  EXPECT_EQ(published[0].channels, (std::vector<ChannelId>{{kInputAt, 6}}));
  EXPECT_TRUE(published[0].events.empty());
}

TEST_F(BusTest, NothingNewIsNotPublished) {
  Report(kInputAt, 0, 0x40);
  Published();
  Report(kInputAt, 0, 0x40);
  EXPECT_TRUE(Published().empty());
}

TEST_F(BusTest, ChangesFollowEachOtherWithoutAGap) {
  Report(kInputAt, 0, 0x00);
  Report(kKnobsAt, 3, 0x10);
  const Change first = Published().at(0);
  Report(kKnobsAt, 3, 0x20);
  const Change second = Published().at(0);
  EXPECT_EQ(second.after, first.sequence);
  EXPECT_EQ(second.sequence, bus.Sequence());
  EXPECT_GT(first.sequence, first.after);
}

TEST_F(BusTest, AChannelThatChangedTwiceIsPublishedOnce) {
  Report(kKnobsAt, 3, 0x10);
  Report(kKnobsAt, 3, 0x20);
  const std::vector<Change> published = Published();
  ASSERT_EQ(published.size(), 1U);
  EXPECT_EQ(published[0].channels, (std::vector<ChannelId>{{kKnobsAt, 3}}));
  EXPECT_EQ(At(kKnobsAt, 3).value, Value(32.0));
}

TEST_F(BusTest, WhatWasSentIsNoLongerAssumed) {
  Send(protocol::WriteBlock{kOutputAt, 0, 0xFE});
  EXPECT_EQ(At(kOutputAt, 0).value, Value(true));
  EXPECT_EQ(At(kOutputAt, 0).raw, 0);
  EXPECT_EQ(At(kOutputAt, 1).value, Value(false));
  EXPECT_FALSE(At(kOutputAt, 0).assumed);
  bus.AssumeOutputs();
  EXPECT_TRUE(At(kOutputAt, 0).assumed);
  EXPECT_TRUE(At(kOutputAt, 8).assumed);  // never known
  Send(protocol::WriteBlock{kOutputAt, 0, 0xFE});
  EXPECT_FALSE(At(kOutputAt, 0).assumed);
}

TEST_F(BusTest, OneCardsOutputsAreAssumed) {
  Send(protocol::WriteBlock{kOutputAt, 0, 0xFE});
  Send(protocol::WriteBlock{kServoAt, 2, 0x40});
  bus.AssumeOutputs(kServoAt);
  EXPECT_TRUE(At(kServoAt, 2).assumed);
  EXPECT_FALSE(At(kOutputAt, 0).assumed);
}

TEST_F(BusTest, WhatIsPendingIsNotOnTheBusYet) {
  bus.SetPending(kServoAt, 2, true);
  EXPECT_TRUE(At(kServoAt, 2).pending);
  EXPECT_FALSE(At(kServoAt, 1).pending);
  Send(protocol::WriteBlock{kServoAt, 2, 0x80});
  EXPECT_FALSE(At(kServoAt, 2).pending);
}

TEST_F(BusTest, AnInputIsNotWrittenAndAnOutputDoesNotReport) {
  Send(protocol::WriteBlock{kInputAt, 0, 0x40});
  Report(kOutputAt, 0, 0x40);
  EXPECT_TRUE(Published().empty());
}

TEST_F(BusTest, AKeyInTheFirstByteHasBeenPressed) {
  Report(kKeysAt, 0, 0x85);
  const Change first = Published().at(0);
  ASSERT_EQ(first.events.size(), 1U);
  EXPECT_EQ(first.events[0].key, (KeyEvent{KeyEventType::kPress, 5}));
}

TEST_F(BusTest, AnEncoderInTheFirstByteHasNotBeenTurned) {
  Report(kKeysAt, 0, 0xC0);
  EXPECT_TRUE(Published().at(0).events.empty());
}

TEST_F(BusTest, AKeyThatIsLetGoIsAnEvent) {
  Report(kKeysAt, 0, 0x05);
  Published();
  Report(kKeysAt, 0, 0x00);
  const Change change = Published().at(0);
  ASSERT_EQ(change.events.size(), 1U);
  EXPECT_EQ(change.events[0].key, (KeyEvent{KeyEventType::kRelease, 5}));
  EXPECT_EQ(change.events[0].address, kKeysAt);
  EXPECT_EQ(change.events[0].time, now);
}

TEST_F(BusTest, EventsAreNeverMerged) {
  Report(kKeysAt, 0, 0x00);
  Published();
  for (const unsigned byte : {0x40, 0xC0, 0x80, 0x00}) Report(kKeysAt, 0, byte);
  const Change change = Published().at(0);
  EXPECT_EQ(change.events.size(), 4U);
  EXPECT_EQ(change.channels.size(), 1U);
}

TEST_F(BusTest, WhoeverFellBehindHearsHowManyEventsWereLost) {
  Report(kKeysAt, 0, 0x00);
  const uint64_t before = bus.Sequence();
  for (int i = 0; i < 600; ++i) {
    Report(kKeysAt, 0, 0x05);
    Report(kKeysAt, 0, 0x00);
  }
  const EventRing::Since all = bus.Events().After(before);
  EXPECT_EQ(all.events.size(), 1000U);
  EXPECT_EQ(all.lost, 200U);
  const EventRing::Since late = bus.Events().After(all.events[10].sequence);
  EXPECT_EQ(late.events.size(), 989U);
  EXPECT_EQ(late.lost, 0U);
}

TEST_F(BusTest, ALevelWithinItsHysteresisStays) {
  Settings settings;
  settings.channels[{kKnobsAt, 3}].hysteresis = 2;
  bus.Apply(settings);
  Report(kKnobsAt, 3, 100);
  Published();
  Report(kKnobsAt, 3, 102);
  EXPECT_TRUE(Published().empty());
  EXPECT_EQ(At(kKnobsAt, 3).value, Value(100.0));
  Report(kKnobsAt, 3, 103);
  EXPECT_EQ(Published().size(), 1U);
  EXPECT_EQ(At(kKnobsAt, 3).value, Value(103.0));
}

// 2.47 - 2.45 is a little more than 0.02, and a bit of noise is no change.
TEST_F(BusTest, AStepOfTheHysteresisIsWithinIt) {
  Settings settings;
  ChannelSettings& volts = settings.channels[{kKnobsAt, 3}];
  volts.max = 5;
  volts.decimals = 2;
  volts.hysteresis = 0.02;
  bus.Apply(settings);
  for (int raw = 0; raw < 255; ++raw) {
    Report(kKnobsAt, 3, static_cast<uint8_t>(raw));
    const Value before = At(kKnobsAt, 3).value;
    Published();
    Report(kKnobsAt, 3, static_cast<uint8_t>(raw + 1));
    Published();
    const double step = std::get<double>(At(kKnobsAt, 3).value) - std::get<double>(before);
    EXPECT_TRUE(step == 0 || step > 0.025) << raw << ": " << step;
  }
}

TEST_F(BusTest, ANewUnitIsReadFromTheSameByte) {
  Report(kKnobsAt, 3, 255);
  Settings settings;
  settings.channels[{kKnobsAt, 3}] = {.name = "Level",
                                      .unit = "V",
                                      .min = 0,
                                      .max = 5,
                                      .decimals = 2,
                                      .hysteresis = 0,
                                      .active_high = {}};
  bus.Apply(settings);
  EXPECT_EQ(At(kKnobsAt, 3).value, Value(5.0));
}

TEST_F(BusTest, AGlassOfAnotherSizeBeginsAnew) {
  Send(protocol::WriteText{kGlassAt, 0, 0, "hello"});
  EXPECT_EQ(bus.At(kGlassAt)->glass->Rows().at(0), "hello               ");
  Settings settings;
  settings.cards[kGlassAt].rows = 2;
  settings.cards[kGlassAt].columns = 16;
  bus.Apply(settings);
  EXPECT_EQ(bus.At(kGlassAt)->glass->Rows(), (std::vector<std::string>(2, std::string(16, ' '))));
}

TEST_F(BusTest, ACodeIsKeptAsItWasSent) {
  Send(protocol::SendInfrared{kInfraredAt, {0x43, 0x4F}});
  EXPECT_EQ(At(kInfraredAt, 0).value, Value(std::string("434F")));
}

TEST_F(BusTest, ASilentCardKeepsWhatItShowed) {
  Send(protocol::WriteBlock{kOutputAt, 0, 0xFE});
  names[kOutputAt] = "CARD?";
  bus.SetCards(names);
  EXPECT_EQ(bus.At(kOutputAt)->state, CardState::kSilent);
  EXPECT_EQ(bus.At(kOutputAt)->kind, Kind::kDigitalOutput);
  EXPECT_EQ(At(kOutputAt, 0).value, Value(true));
  names[kOutputAt] = "16 channel DIGITAL OUTPUT";
  bus.SetCards(names);
  EXPECT_EQ(bus.At(kOutputAt)->state, CardState::kPresent);
  EXPECT_EQ(At(kOutputAt, 0).value, Value(true));
}

TEST_F(BusTest, ASilentCardThatNobodyKnewIsCalledSilent) {
  names[0x1] = "CARD?";
  bus.SetCards(names);
  EXPECT_EQ(bus.At(0x1)->kind, Kind::kSilent);
  EXPECT_EQ(bus.At(0x1)->state, CardState::kSilent);
}

TEST_F(BusTest, ACardThatHasGoneIsAbsent) {
  names[kOutputAt] = "EMPTY";
  bus.SetCards(names);
  EXPECT_EQ(bus.At(kOutputAt)->state, CardState::kAbsent);
  EXPECT_EQ(Published().at(0).cards, (std::vector<unsigned>{kOutputAt}));
}

TEST_F(BusTest, ACardOfAnotherKindBeginsAnew) {
  Report(kInputAt, 0, 0x40);
  names[kInputAt] = "6 channel RC SERVO CONTROLLER";
  bus.SetCards(names);
  EXPECT_EQ(bus.At(kInputAt)->kind, Kind::kServo);
  EXPECT_EQ(bus.At(kInputAt)->channels.size(), 6U);
  EXPECT_FALSE(At(kInputAt, 0).IsKnown());
}

TEST_F(BusTest, AKindThatNobodyHasANameForIsUnknown) {
  names[0x2] = "UNIDENTIFIED";
  names[0x4] = "something of next year";
  bus.SetCards(names);
  EXPECT_EQ(bus.At(0x2)->kind, Kind::kUnknown);
  EXPECT_EQ(bus.At(0x4)->kind, Kind::kUnknown);
}

TEST_F(BusTest, StatesAreKeptAndPublishedOnce) {
  bus.SetDaemon({DaemonState::kWaiting, {}, now, "io"});
  bus.SetAdapter({AdapterState::kUp, "/dev/ttyUSB0", "v1.2"});
  bus.SetPace(50);
  EXPECT_TRUE(Published().at(0).bus);
  EXPECT_EQ(bus.DaemonNow().waiting_for, "io");
  EXPECT_EQ(bus.AdapterNow().version, "v1.2");
  bus.SetDaemon({DaemonState::kWaiting, {}, now, "io"});
  bus.SetPace(50);
  EXPECT_TRUE(Published().empty());
}

TEST_F(BusTest, PollingIsKnownForTheBusAndItsInputCards) {
  protocol::Polling polling;
  polling.all = true;
  polling.cards[kInputAt] = true;
  polling.cards[kKnobsAt] = false;
  bus.SetPolling(polling);
  EXPECT_EQ(bus.Polling(), true);
  EXPECT_EQ(bus.At(kInputAt)->polling, true);
  EXPECT_EQ(bus.At(kKnobsAt)->polling, false);
  EXPECT_EQ(bus.At(kOutputAt)->polling, std::nullopt);
}

}  // namespace
}  // namespace hub::model
