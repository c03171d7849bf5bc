#include "base/Times.h"

#include <gtest/gtest.h>

#include <cstdlib>

namespace ctl {
namespace {

using std::chrono::milliseconds;

constexpr Moment kNoon{milliseconds(1'795'262'400'000)};  // 2026-11-21 12:00 UTC

class Times : public testing::Test {
 protected:
  void SetUp() override {
    setenv("TZ", "CET-1CEST,M3.5.0,M10.5.0/3", 1);
    tzset();
  }
};

TEST_F(Times, DurationsHaveAUnit) {
  EXPECT_EQ(ParseDuration("500ms"), milliseconds(500));
  EXPECT_EQ(ParseDuration("2s"), milliseconds(2'000));
  EXPECT_EQ(ParseDuration("1.5s"), milliseconds(1'500));
  EXPECT_EQ(ParseDuration("10m"), milliseconds(600'000));
  EXPECT_EQ(ParseDuration("2h"), milliseconds(7'200'000));
  EXPECT_EQ(ParseDuration("7d"), milliseconds(604'800'000));
}

TEST_F(Times, WhatIsNoDurationIsRefused) {
  for (const char* text :
       {"", "2", "s", "2x", "-2s", "1e3s", "0.5ms", "2 s", "nan", "99999999999d"})
    EXPECT_EQ(ParseDuration(text), std::nullopt) << text;
}

TEST_F(Times, AMomentIsSoLongAgo) {
  EXPECT_EQ(ParseMoment("2h", kNoon), kNoon - milliseconds(7'200'000));
}

TEST_F(Times, AMomentIsLocalUnlessItHasAZone) {
  EXPECT_EQ(ParseMoment("2026-11-21 13:00", {}), kNoon);
  EXPECT_EQ(ParseMoment("2026-11-21 13:00:05", {}), kNoon + milliseconds(5'000));
  EXPECT_EQ(ParseMoment("2026-11-21", {}), kNoon - milliseconds(13 * 3'600'000));
  EXPECT_EQ(ParseMoment("2026-11-21T12:00:00Z", {}), kNoon);
  EXPECT_EQ(ParseMoment("2026-11-21T14:30:00.250+02:30", {}), kNoon + milliseconds(250));
}

TEST_F(Times, WhatIsNoMomentIsRefused) {
  for (const char* text : {"yesterday", "2026-13-01", "2026-11-21T12:00:00", "12:00"})
    EXPECT_EQ(ParseMoment(text, {}), std::nullopt) << text;
}

TEST_F(Times, AreWrittenInUtcForPrograms) {
  EXPECT_EQ(FormatUtc(kNoon + milliseconds(7)), "2026-11-21T12:00:00.007Z");
}

TEST_F(Times, AreWrittenInLocalTimeForPeople) {
  EXPECT_EQ(FormatLocal(kNoon), "2026-11-21 13:00:00");
  EXPECT_EQ(FormatClock(kNoon + milliseconds(250)), "13:00:00.250");
}

}  // namespace
}  // namespace ctl
