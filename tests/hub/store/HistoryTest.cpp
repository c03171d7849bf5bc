#include "StoreTest.h"

namespace hub::store {
namespace {

class StoreHistory : public StoreTest {};

TEST_F(StoreHistory, ValuesAsTheyCame) {
  Start();
  Add(2.5);
  clock.Pass(1500ms);
  Add(2.48);
  const History history = Read(kKnob, Noon(), Noon(1h), 500);
  EXPECT_EQ(history.step_ms, 0);
  EXPECT_EQ(ToCurve(history), (Curve{{0, 2.5, 2.5, 2.5}, {1.5, 2.48, 2.48, 2.48}}));
}

TEST_F(StoreHistory, OnceStoppedItWaitsForNoClockAndWritesAllAtTheEnd) {
  Start();
  Add(1);
  store->Stop();
  Add(2);
  context.run_for(5s);
  EXPECT_TRUE(context.stopped());
  context.restart();
  Restart();
  EXPECT_EQ(ReadDay(), (Curve{{0, 1, 1, 1}, {0, 2, 2, 2}}));
}

TEST_F(StoreHistory, BothEndsBelongToTheSpan) {
  Start();
  for (const double value : {1, 2, 3, 4}) {
    Add(value);
    clock.Pass(1s);
  }
  EXPECT_EQ(ToCurve(Read(kKnob, Noon(1s), Noon(2s), 500)), (Curve{{1, 2, 2, 2}, {2, 3, 3, 3}}));
  WriteAfterMinute();
  EXPECT_EQ(ToCurve(Read(kKnob, Noon(1s), Noon(2s), 500)), (Curve{{1, 2, 2, 2}, {2, 3, 3, 3}}));
}

TEST_F(StoreHistory, ChannelsAreApart) {
  Start();
  Add(1, kLamp);
  Add(7, kKnob);
  Add(9, {0xF, 255});
  WriteAfterMinute();
  EXPECT_EQ(ReadDay(500, kLamp), (Curve{{0, 1, 1, 1}}));
  EXPECT_EQ(ReadDay(500, kKnob), (Curve{{0, 7, 7, 7}}));
  EXPECT_EQ(ReadDay(500, {0xF, 255}), (Curve{{0, 9, 9, 9}}));
  EXPECT_EQ(ReadDay(500, {0xF, 4}), Curve{});
}

TEST_F(StoreHistory, WhatIsWrittenAndWhatWaitsIsOneCurve) {
  Start();
  Add(1);
  WriteAfterMinute();
  Add(2);
  EXPECT_EQ(ReadDay(), (Curve{{0, 1, 1, 1}, {60, 2, 2, 2}}));
}

TEST_F(StoreHistory, NothingThatIsNoNumber) {
  Start();
  Add(std::numeric_limits<double>::quiet_NaN());
  Add(std::numeric_limits<double>::infinity());
  EXPECT_EQ(ReadDay(), Curve{});
  EXPECT_EQ(store->Count().values_waiting, 0u);
}

TEST_F(StoreHistory, NoPointsOrNoSpanGiveNothing) {
  Start();
  Add(1);
  EXPECT_EQ(ToCurve(Read(kKnob, Noon(), Noon(1h), 0)), Curve{});
  EXPECT_EQ(ToCurve(Read(kKnob, Noon(1h), Noon(), 500)), Curve{});
}

TEST_F(StoreHistory, ItIsThereAfterARestart) {
  Start();
  Add(1);
  Restart();
  EXPECT_EQ(ReadDay(), (Curve{{0, 1, 1, 1}}));
}

TEST_F(StoreHistory, MoreThanFitAreMeanMinimumAndMaximum) {
  Start();
  for (const double value : {1, 2, 6, 10}) {
    Add(value);
    clock.Pass(10s);
  }
  const History history = Read(kKnob, Noon(), Noon(59s), 3);
  EXPECT_EQ(history.step_ms, 30'000);
  EXPECT_EQ(ToCurve(history), (Curve{{0, 3, 1, 6}, {30, 10, 10, 10}}));
}

TEST_F(StoreHistory, MinutesAreTheSameFromAllTheirPlaces) {
  Start();
  AddHour();     // sixty batches: in the blocks
  AddHour(100);  // half of them only in batches, the last minute in memory
  const History history = Read(kKnob, Noon(), Noon(2h - 1s), 120);
  EXPECT_EQ(history.step_ms, 60'000);
  Curve expected;
  for (int minute = 0; minute < 60; ++minute) expected.push_back({60.0 * minute, 29.5, 0, 59});
  for (int minute = 60; minute < 120; ++minute)
    expected.push_back({60.0 * minute, 129.5, 100, 159});
  EXPECT_EQ(ToCurve(history), expected);
}

TEST_F(StoreHistory, HoursAreTheSameFromAllTheirPlaces) {
  Start();
  AddHour();
  AddHour(100);
  EXPECT_EQ(ReadDay(25), (Curve{{0, 29.5, 0, 59}, {3600, 129.5, 100, 159}}));
  Restart();
  EXPECT_EQ(ReadDay(25), (Curve{{0, 29.5, 0, 59}, {3600, 129.5, 100, 159}}));
  EXPECT_EQ(ReadDay(13), (Curve{{0, 79.5, 0, 159}}));  // each counts once
}

TEST_F(StoreHistory, AJumpOfAnHourForwardsAndBackLosesNothing) {
  Start();
  Add(1);
  clock.Jump(1h);
  clock.Pass(1s);
  Add(2);
  clock.Jump(-1h);
  clock.Pass(1s);
  Add(3);
  const Curve expected{{0, 1, 1, 1}, {2, 3, 3, 3}, {3601, 2, 2, 2}};
  EXPECT_EQ(ReadDay(), expected);
  WriteAfterMinute();
  EXPECT_EQ(ReadDay(), expected);
}

TEST_F(StoreHistory, AnHourThatComesTwiceIsAddedUp) {
  Start();
  AddHour(0);
  clock.Jump(-1h);
  AddHour(100);
  AddHour(0);
  EXPECT_EQ(ReadDay(25), (Curve{{0, 79.5, 0, 159}, {3600, 29.5, 0, 59}}));
  EXPECT_EQ(ReadDay(20'000).size(), 3 * 3600u);
}

// A value an hour, and a batch a value.
class StoreLimits : public StoreTest {
 protected:
  // The file and its log.
  uintmax_t BytesOnDisk() const {
    uintmax_t bytes = 0;
    for (const auto& entry : std::filesystem::directory_iterator(options.folder))
      bytes += entry.file_size();
    return bytes;
  }

  void AddDays(int days) {
    for (int hour = 0; hour < 24 * days; ++hour) {
      Add(hour % 24);
      WriteAfterMinute();
      clock.Pass(59min);
    }
  }
};

TEST_F(StoreLimits, ValuesGoAfterTheirDaysAndMinutesAfterAMonth) {
  Start();
  AddDays(45);
  // The 45 days end at noon of the last one.
  const auto now = Noon(45 * 24h);
  EXPECT_EQ(Read(kKnob, now - 6 * 24h, now, 500).step_ms, 0);
  EXPECT_EQ(Read(kKnob, now - 6 * 24h, now, 500).points.size(), 144u);
  const History month = Read(kKnob, now - 25 * 24h, now - 25 * 24h + 8h, 500);
  EXPECT_EQ(month.step_ms, 60'000);
  EXPECT_EQ(month.points.size(), 9u);
  const History older = Read(kKnob, Noon(), Noon(8h), 500);
  EXPECT_EQ(older.step_ms, 3'600'000);
  EXPECT_EQ(older.points.size(), 9u);
  const History all = Read(kKnob, Noon(), now, 2000);
  EXPECT_EQ(all.step_ms, 3'600'000);
  EXPECT_EQ(all.points.size(), 45 * 24u);
}

// A board that is on for less than it takes to look what is old.
TEST_F(StoreLimits, ValuesGoAfterTheirDaysThoughTheHubRunsForHours) {
  Start();
  for (int days = 0; days < 45; days += 3) {
    AddDays(3);
    Restart();
  }
  const History old = Read(kKnob, Noon(20 * 24h), Noon(20 * 24h + 8h), 500);
  EXPECT_EQ(old.step_ms, 60'000);
  EXPECT_EQ(Read(kKnob, Noon(), Noon(8h), 500).step_ms, 3'600'000);
}

TEST_F(StoreLimits, AClockAYearAheadForAMomentDropsNothing) {
  options.keep_days = 30;
  Start();
  AddDays(4);
  clock.Jump(365 * 24h);
  AddDays(1);
  clock.Jump(-365 * 24h);
  AddDays(4);
  const History history = Read(kKnob, Noon(), Noon(10 * 24h), 500);
  EXPECT_EQ(history.step_ms, 0);
  EXPECT_EQ(history.points.size(), 8 * 24u);
}

TEST_F(StoreLimits, TheFileKeepsWithinItsMegabytes) {
  options.max_mb = 2;
  Start();
  // Values that do not pack: half a megabyte a batch.
  for (int batch = 0; batch < 20; ++batch) {
    for (int i = 0; i < 50'000; ++i) {
      Add(1.0 / (i + 3));
      clock.Pass(10ms);
    }
    WriteAfterMinute();
    EXPECT_LE(std::filesystem::file_size(File()), 2u << 20) << "after batch " << batch;
    EXPECT_LE(BytesOnDisk(), 4u << 20) << "after batch " << batch;
  }
  Restart();
  const History all = Read(kKnob, Noon(), clock.Now(), 500);
  EXPECT_EQ(all.step_ms, 60'000);  // the values went, the minutes stayed
  EXPECT_EQ(all.points.front().time, Noon());
}

TEST_F(StoreLimits, DocumentsMayTakeAllTheRoom) {
  options.max_mb = 1;
  Start();
  AddDays(3);
  Restart();
  const auto last = Journal().entries.back().sequence;
  EXPECT_EQ(Journal().entries.size(), 72u);
  EXPECT_EQ(Read(kKnob, Noon(), clock.Now(), 500).points.size(), 72u);
  store->PutDocument("names", std::string(1'000'000, 'x'));
  Add(1);
  WriteAfterMinute();
  Restart();
  EXPECT_EQ(store->Document("names").value().size(), 1'000'000u);
  EXPECT_TRUE(Read(kKnob, Noon(), clock.Now(), 500).points.empty());
  ASSERT_EQ(Journal().entries.size(), 1u);
  EXPECT_EQ(Journal().entries.back().sequence, last + 1);  // the numbers go on from it
}

TEST_F(StoreLimits, ALowerLimitMakesTheFileSmaller) {
  Start();
  for (int i = 0; i < 250'000; ++i) {
    Add(1.0 / (i + 3));
    clock.Pass(10ms);
    if (i % 50'000 == 0) WriteAfterMinute();
  }
  Restart();
  EXPECT_GT(std::filesystem::file_size(File()), 2u << 20);
  Stop();
  options.max_mb = 1;
  Start();
  Add(1);
  Stop();
  EXPECT_LE(std::filesystem::file_size(File()), 1u << 20);
}

}  // namespace
}  // namespace hub::store
