#include "config/Speed.h"

#include <gtest/gtest.h>

#include <climits>

TEST(Speed, GivesTheDelayOfAPercentage) {
  struct Case {
    long percent;
    int delay;
  };
  for (const Case& c : {Case{1, 5000}, Case{2, 4949}, Case{7, 4697}, Case{50, 2525}, Case{99, 51},
                        Case{100, 1}, Case{0, 5050}})
    EXPECT_EQ(SpeedDelay(c.percent), c.delay) << c.percent;
}

TEST(Speed, ContinuesTheLineOutsideItsRange) {
  EXPECT_EQ(SpeedDelay(101), -49);    // (-504899 + 500000) / 99 = -49.48
  EXPECT_EQ(SpeedDelay(200), -5048);  // (-999800 + 500000) / 99 = -5048.48
  EXPECT_EQ(SpeedDelay(-1), 5101);    // (4999 + 500000) / 99 = 5101.00
}

TEST(Speed, StopsAtTheEndsOfTheRange) {
  EXPECT_EQ(SpeedDelay(LONG_MAX), -2147483647);
  EXPECT_EQ(SpeedDelay(LONG_MIN), 2147483647);
}
