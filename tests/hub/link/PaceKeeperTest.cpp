#include "link/PaceKeeper.h"

#include <gtest/gtest.h>

namespace hub::link {
namespace {

using namespace std::chrono_literals;

TEST(PaceKeeper, NothingKnownIsTheSlowest) {
  PaceKeeper pace;
  EXPECT_GE(pace.Round(1), 5370us);  // a pause of 5 ms, waking up, one frame
  EXPECT_LE(pace.Round(1), 7ms);
}

TEST(PaceKeeper, AKnownPauseCounts) {
  PaceKeeper pace;
  pace.SetPause(1us);
  EXPECT_LE(pace.Round(1), 500us);
  pace.SetPause(std::nullopt);
  EXPECT_GE(pace.Round(1), 5370us);
}

TEST(PaceKeeper, EachPollAndEachFrameTakesItsTime) {
  PaceKeeper pace;
  pace.SetPause(1us);
  const auto alone = pace.Round(1);
  pace.SetPolledCards(3);
  EXPECT_GE(pace.Round(2), alone + 4 * 300us);
}

TEST(PaceKeeper, QuickReceiptsLetItGuess) {
  PaceKeeper pace;
  for (int i = 0; i < 100; ++i) pace.TakeReceipt(300us);
  EXPECT_LE(pace.Round(1), 1ms);
}

TEST(PaceKeeper, SlowReceiptsStretchTheRound) {
  PaceKeeper pace;
  pace.SetPause(2525us);
  const auto quiet = pace.Round(1);
  for (int i = 0; i < 100; ++i) pace.TakeReceipt(4ms);  // as usual
  EXPECT_EQ(pace.Round(1), quiet);
  for (int i = 0; i < 100; ++i) pace.TakeReceipt(20ms);
  EXPECT_GE(pace.Round(1), 3 * quiet);
}

TEST(PaceKeeper, AReceiptThatIsALittleLateDoesNot) {
  PaceKeeper pace;
  pace.SetPause(1us);
  const auto quiet = pace.Round(16);
  for (int i = 0; i < 100; ++i) pace.TakeReceipt(450us);
  EXPECT_EQ(pace.Round(16), quiet);
}

TEST(PaceKeeper, AReceiptThatWaitedForACardSaysNothing) {
  PaceKeeper pace;
  for (int i = 0; i < 100; ++i) pace.TakeReceipt(300us);
  const auto before = pace.Round(1);
  pace.TakeReceipt(2s);
  EXPECT_EQ(pace.Round(1), before);
}

}  // namespace
}  // namespace hub::link
