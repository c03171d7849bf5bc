#include "runtime/Pause.h"

#include <gtest/gtest.h>

#include <chrono>
#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <fstream>

#include "kit/SleepControl.h"
#include "kit/TempDir.h"

namespace {

using std::chrono::microseconds;

template <class Pause>
microseconds Length(Pause pause) {
  const auto begin = std::chrono::steady_clock::now();
  pause();
  return std::chrono::duration_cast<microseconds>(std::chrono::steady_clock::now() - begin);
}

// Puts a `sleep` that does this into the path while it lives.
class SleepThat {
 public:
  explicit SleepThat(const std::string& script) {
    std::ofstream(dir_.Path("sleep")) << "#!/bin/sh\n" << script << '\n';
    std::filesystem::permissions(dir_.Path("sleep"), std::filesystem::perms::owner_all);
    setenv("PATH", (dir_.Path("") + ":" + path_).c_str(), 1);
  }
  ~SleepThat() { setenv("PATH", path_.c_str(), 1); }
  SleepThat(const SleepThat&) = delete;
  SleepThat& operator=(const SleepThat&) = delete;

 private:
  const TempDir dir_;
  const std::string path_ = std::getenv("PATH");
};

}  // namespace

TEST(Pause, SleepCountsInUnitsOf100Nanoseconds) {
  EXPECT_GE(Length([] { Sleep(50'000); }), microseconds(5'000));
}

TEST(Pause, SleepTakesMoreThanASecond) {
  EXPECT_GE(Length([] { Sleep(10'000'001); }), microseconds(1'000'000));
}

TEST(Pause, TheLoopDelayCountsInMicroseconds) {
  EXPECT_GE(Length([] { SleepMicroseconds(5'000); }), microseconds(5'000));
}

// A delay read as unsigned would last for more than an hour.
TEST(Pause, ADelayOfZeroOrLessDoesNotSleep) {
  SleepMicroseconds(0);
  SleepMicroseconds(-1);
  SleepMicroseconds(-2147483647 - 1);
}

TEST(Pause, WholeSecondsRunSleepFromPath) {
  const SleepRecord record;
  sleepsec(3);
  sleepsec(12);
  EXPECT_EQ(record.Seconds(), (std::vector<std::string>{"3", "12"}));
}

TEST(Pause, WholeSecondsLastAlsoWhereNoSleepAnswers) {
  const std::string path = std::getenv("PATH");
  setenv("PATH", "/nonexistent", 1);
  const microseconds length = Length([] { sleepsec(1); });
  setenv("PATH", path.c_str(), 1);
  EXPECT_GE(length, microseconds(1'000'000));
}

TEST(Pause, WholeSecondsLastAlsoWhereSleepFails) {
  const SleepThat fails("exit 1");
  EXPECT_GE(Length([] { sleepsec(1); }), microseconds(1'000'000));
}

TEST(Pause, AKilledSleepIsNotMadeUpFor) {
  const SleepThat is_killed("kill -9 $$");
  EXPECT_LT(Length([] { sleepsec(30); }), microseconds(30'000'000));
}

// The child is not there to be waited for, but it has slept.
TEST(Pause, WholeSecondsLastOnceWhereChildrenAreNotWaitedFor) {
  const auto before = std::signal(SIGCHLD, SIG_IGN);
  const microseconds length = Length([] { sleepsec(30); });
  std::signal(SIGCHLD, before);
  EXPECT_LT(length, microseconds(30'000'000));
}

TEST(Pause, NoSecondsPassAtOnceAlsoWhereNoSleepAnswers) {
  const std::string path = std::getenv("PATH");
  setenv("PATH", "/nonexistent", 1);
  sleepsec(0);
  sleepsec(-1);
  setenv("PATH", path.c_str(), 1);
}
