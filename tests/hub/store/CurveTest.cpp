#include "store/Curve.h"

#include <gtest/gtest.h>

namespace hub::store {
namespace {

constexpr int64_t kNoon = 1795262400000;  // 2026-11-21

TEST(StepFor, IsTheShortestThatGivesNoMorePoints) {
  const struct {
    int64_t length;
    size_t points;
    int64_t step;
  } rows[] = {
      {0, 1, 10},
      {4'990, 500, 10},
      {5'000, 500, 20},
      {10 * kMinute, 500, 2 * kSecond},
      {kHour, 500, 10 * kSecond},
      {kDay, 500, 3 * kMinute},
      {7 * kDay, 500, 30 * kMinute},
      {31 * kDay, 500, 2 * kHour},
      {366 * kDay, 500, kDay},
      {3660 * kDay, 500, 14 * kDay},
      {3660 * kDay, 1000, 4 * kDay},
  };
  for (const auto& row : rows)
    EXPECT_EQ(StepFor({0, kNoon, kNoon + row.length, row.points}, 0), row.step) << row.length;
}

TEST(StepFor, IsNoFinerThanWhatIsKept) {
  EXPECT_EQ(StepFor({0, kNoon, kNoon + kMinute, 500}, kMinute), kMinute);
  EXPECT_EQ(StepFor({0, kNoon, kNoon + kMinute, 500}, kHour), kHour);
}

TEST(StepFor, OnePointTakesAStepAroundBothEnds) {
  const int64_t step = StepFor({0, kNoon, kNoon + 1, 1}, 0);
  EXPECT_EQ(step, 10);
  const int64_t midnight = kNoon + 12 * kHour;
  const int64_t around = StepFor({0, midnight - 1, midnight, 1}, 0);
  EXPECT_EQ((midnight - 1) / around, midnight / around);
}

}  // namespace
}  // namespace hub::store
