#include "link/Backoff.h"

#include <gtest/gtest.h>

namespace hub::link {
namespace {

using namespace std::chrono_literals;

TEST(Backoff, DoublesToThirtySecondsWithUpToAQuarterByChance) {
  Backoff backoff(1);
  for (const auto pause : {1000ms, 2000ms, 4000ms, 8000ms, 16'000ms, 30'000ms, 30'000ms}) {
    const auto next = backoff.Next();
    EXPECT_LE(next, pause);
    EXPECT_GE(next, pause - pause / 4);
  }
  backoff.Reset();
  EXPECT_LE(backoff.Next(), 1000ms);
}

TEST(Backoff, TwoHubsDoNotComeBackTogether) {
  Backoff one(123'456);
  Backoff other(987'654'321);
  EXPECT_NE(one.Next(), other.Next());
}

}  // namespace
}  // namespace hub::link
