// What a CThread does while it lives: objects, passes, types, states.
#include "runtime/Thread.h"

#include <gtest/gtest.h>

#include <atomic>
#include <vector>

#include "kit/Helper.h"
#include "kit/Wait.h"

namespace {

// An event-driven thread that writes down the objects it gets.
class Collector : public CThread {
 public:
  ~Collector() {
    may_work = true;
    Stop();
  }

  bool OnTask(void* object) override {
    WaitUntil([this] { return may_work.load(); });
    seen.push_back(*static_cast<int*>(object));
    ++seen_count;
    return true;
  }
  bool OnTask() override {
    ++empty_passes;
    WaitUntil([this] { return may_work.load(); });
    return true;
  }

  std::atomic<bool> may_work{true};
  std::atomic<int> empty_passes{0};
  std::atomic<int> seen_count{0};
  std::vector<int> seen;  // to be read once seen_count says so
};

// An interval-driven thread that counts its passes.
class Ticker : public CThread {
 public:
  explicit Ticker(bool may_work_at_once = true) : may_work(may_work_at_once) {
    SetThreadType(kIntervalDriven, 10);
  }
  ~Ticker() {
    may_work = true;
    Stop();
  }
  bool OnTask() override {
    ++passes;
    WaitUntil([this] { return may_work.load(); });
    return true;
  }

  std::atomic<bool> may_work;
  std::atomic<int> passes{0};
};

}  // namespace

TEST(Thread, StartsEventDrivenAndWaiting) {
  Collector thread;
  EXPECT_TRUE(thread.PingThread(0));
  EXPECT_TRUE(thread.IsRunning());
  EXPECT_EQ(thread.ThreadState(), 1);
  EXPECT_EQ(thread.GetErrors(), 0U);
  EXPECT_TRUE(thread.Empty());
  EXPECT_EQ(thread.empty_passes, 0);
}

TEST(Thread, RefusesTheHundredthObject) {
  CThread thread;
  int object = 0;
  for (int i = 0; i < 99; ++i) ASSERT_TRUE(thread.Push(&object)) << i;
  EXPECT_FALSE(thread.Push(&object));
  EXPECT_FALSE(thread.Event(&object));
  EXPECT_EQ(thread.GetEventsPending(), 99);
  EXPECT_FALSE(thread.Empty());
  for (int i = 0; i < 99; ++i) thread.Pop();
  EXPECT_TRUE(thread.Empty());
}

TEST(Thread, TakesANullObjectAndStoresNothing) {
  CThread thread;
  EXPECT_TRUE(thread.Push(nullptr));
  EXPECT_EQ(thread.GetEventsPending(), 0);
}

TEST(Thread, WorksOnTheYoungestObjectFirst) {
  Collector thread;
  std::vector<int> objects{1, 2, 3};
  for (int& object : objects) ASSERT_TRUE(thread.Push(&object));
  ASSERT_TRUE(thread.Event(static_cast<void*>(nullptr)));
  ASSERT_TRUE(WaitUntil([&] { return thread.seen_count == 3; }));
  EXPECT_EQ(thread.seen, (std::vector<int>{3, 2, 1}));
  EXPECT_TRUE(WaitUntil([&] { return thread.ThreadState() == kThreadWaiting; }));
}

TEST(Thread, AWakeUpWithNothingPendingRunsOneEmptyPass) {
  Collector thread;
  ASSERT_TRUE(thread.Event(static_cast<void*>(nullptr)));
  ASSERT_TRUE(WaitUntil([&] { return thread.empty_passes == 1; }));
  int object = 7;
  ASSERT_TRUE(thread.Event(&object));
  ASSERT_TRUE(WaitUntil([&] { return thread.seen_count == 1; }));
  EXPECT_EQ(thread.empty_passes, 1);
}

TEST(Thread, IsBusyInsideAPass) {
  Collector thread;
  thread.may_work = false;
  ASSERT_TRUE(thread.Event(static_cast<void*>(nullptr)));
  ASSERT_TRUE(WaitUntil([&] { return thread.empty_passes == 1; }));
  EXPECT_EQ(thread.ThreadState(), 0);
  thread.may_work = true;
  EXPECT_TRUE(WaitUntil([&] { return thread.ThreadState() == 1; }));
}

TEST(Thread, AnEventDuringAPassWaitsForItsEndAndIsServed) {
  Collector thread;
  thread.may_work = false;
  ASSERT_TRUE(thread.Event(static_cast<void*>(nullptr)));
  ASSERT_TRUE(WaitUntil([&] { return thread.empty_passes == 1; }));
  int object = 5;
  Helper caller([&] { thread.Event(&object); });
  EXPECT_TRUE(caller.WaitUntilBlocked());
  thread.may_work = true;
  caller.Join();
  EXPECT_TRUE(WaitUntil([&] { return thread.seen_count == 1; }));
}

TEST(Thread, AnIntervalThreadPassesAgainAndAgain) {
  Ticker thread;
  EXPECT_TRUE(WaitUntil([&] { return thread.passes > 20; }));
}

TEST(Thread, AnEventOnAnIntervalThreadIsAFaultThatStopStillEnds) {
  Ticker thread(false);
  ASSERT_TRUE(WaitUntil([&] { return thread.passes == 1; }));
  int object = 0;
  EXPECT_FALSE(thread.Event(&object));
  EXPECT_EQ(thread.ThreadState(), 4);
  EXPECT_EQ(thread.GetErrors(), 0x10U);
  EXPECT_EQ(thread.GetEventsPending(), 0);
  thread.may_work = true;
  thread.Stop();
  EXPECT_EQ(thread.ThreadState(), 2);
}

TEST(Thread, PingWaitsUntilTheThreadRuns) {
  for (int i = 0; i < 100; ++i) {
    CThread thread;
    EXPECT_TRUE(thread.PingThread(0));
    EXPECT_TRUE(thread.IsRunning());
  }
}

TEST(Thread, PingOfADeadThreadGivesUpAfterItsTimeout) {
  Ticker thread;
  thread.Stop();
  thread.SetIdle(1000);
  EXPECT_FALSE(thread.PingThread(5000));
}

TEST(Thread, APriorityChangesNothing) {
  Ticker thread;
  thread.SetPriority(7);
  const int passes = thread.passes;
  EXPECT_TRUE(WaitUntil([&] { return thread.passes > passes; }));
}

TEST(Thread, SaysThatItIsAliveWhereNobodySaysMore) {
  testing::internal::CaptureStdout();
  {
    CThread thread;
    ASSERT_TRUE(thread.PingThread(0));
    ASSERT_TRUE(thread.OnTask());
  }
  std::fflush(stdout);
  EXPECT_EQ(testing::internal::GetCapturedStdout(), "\nthread is alive\n");
}
