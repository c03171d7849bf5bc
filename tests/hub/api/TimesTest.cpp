#include "api/Times.h"

#include <gtest/gtest.h>

namespace hub::api {
namespace {

TEST(TimesTest, ATimeIsInUtcWithMilliseconds) {
  EXPECT_EQ(TimeText(TimeOf(1'795'262'400'000)), "2026-11-21T12:00:00.000Z");
  EXPECT_EQ(TimeText(TimeOf(1'709'251'199'007)), "2024-02-29T23:59:59.007Z");
  EXPECT_EQ(TimeText(TimeOf(0)), "1970-01-01T00:00:00.000Z");
  EXPECT_EQ(TimeText(model::Time(std::chrono::microseconds(1'999))), "1970-01-01T00:00:00.001Z");
}

TEST(TimesTest, MillisecondsAreRoundedDown) {
  EXPECT_EQ(Milliseconds(model::Time(std::chrono::microseconds(1'999))), 1);
}

TEST(TimesTest, ATimeIsReadInEachForm) {
  for (const char* text :
       {"1795262400000", "2026-11-21T12:00:00Z", "2026-11-21t12:00:00z", "2026-11-21 12:00:00.000Z",
        "2026-11-21T14:30:00+02:30", "2026-11-21T07:00:00.0009-05:00"})
    EXPECT_EQ(ParseTime(text), 1'795'262'400'000) << text;
  EXPECT_EQ(ParseTime("2026-11-21T12:00:00.5Z"), 1'795'262'400'500);
  EXPECT_EQ(ParseTime("2026-11-21T11:59:60Z"), 1'795'262'399'000);
  EXPECT_EQ(ParseTime("0"), 0);
}

TEST(TimesTest, WhatIsNoTimeIsNone) {
  for (const char* text : {"",
                           "now",
                           "-1",
                           "1.5",
                           "2026-11",
                           "2026-11-21",
                           "2026-11-21T12:00Z",
                           "2026-11-21T12:00:00",
                           "2026-13-01T00:00:00Z",
                           "2026-02-29T00:00:00Z",
                           "2026-11-21T24:00:00Z",
                           "2026-11-21T12:60:00Z",
                           "2026-11-21T12:00:61Z",
                           "2026-11-21T12:00:00.Z",
                           "2026-11-21T12:00:00+2:00",
                           "2026-11-21T12:00:00+24:00",
                           "2026-11-21T12:00:00Zx",
                           "1969-12-31T23:59:59Z",
                           "1970-01-01T00:00:00+00:01",
                           "253402300800000",
                           "99999999999999999999"})
    EXPECT_EQ(ParseTime(text), std::nullopt) << text;
}

}  // namespace
}  // namespace hub::api
