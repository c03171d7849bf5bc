// How a CThread begins and ends, and begins again.
#include <gtest/gtest.h>
#include <sys/resource.h>

#include <atomic>
#include <barrier>

#include "kit/Helper.h"
#include "kit/Wait.h"
#include "runtime/Thread.h"
#include "support/Sanitizers.h"

namespace {

// An interval-driven thread that ends itself once it is tired.
class Worker : public CThread {
 public:
  Worker() { SetThreadType(kIntervalDriven, 1); }
  ~Worker() { Stop(); }
  bool OnTask() override {
    ++passes;
    return !is_tired;
  }

  std::atomic<bool> is_tired{false};
  std::atomic<int> passes{0};
};

// An event-driven thread whose pass lasts until it may end.
class Sleeper : public CThread {
 public:
  ~Sleeper() { Stop(); }
  bool OnTask() override {
    is_in_pass = true;
    WaitUntil([this] { return may_end.load(); });
    return is_good;
  }

  std::atomic<bool> is_in_pass{false};
  std::atomic<bool> may_end{false};
  std::atomic<bool> is_good{true};
};

}  // namespace

TEST(ThreadLife, StopWaitsUntilTheThreadIsDown) {
  Worker thread;
  ASSERT_TRUE(WaitUntil([&] { return thread.passes > 0; }));
  thread.Stop();
  EXPECT_EQ(thread.ThreadState(), 2);
  EXPECT_FALSE(thread.IsRunning());
  const int passes = thread.passes;
  thread.Stop();
  EXPECT_EQ(thread.passes, passes);
}

TEST(ThreadLife, StopBeforeTheFirstPassRunsNone) {
  for (int i = 0; i < 200; ++i) {
    CThread thread;
    thread.Stop();
    EXPECT_EQ(thread.ThreadState(), 2);
  }
}

TEST(ThreadLife, StopEndsAnEventDrivenThread) {
  Sleeper thread;
  ASSERT_TRUE(thread.PingThread(0));
  thread.Stop();
  EXPECT_EQ(thread.ThreadState(), 2);
  EXPECT_FALSE(thread.is_in_pass);
}

// Stop finds the event's mutex held by the pass and must not find it held for ever.
TEST(ThreadLife, StopDuringAnEventDrivenPassEndsAfterIt) {
  for (int i = 0; i < 50; ++i) {
    Sleeper thread;
    ASSERT_TRUE(thread.PingThread(0));
    ASSERT_TRUE(thread.Event(static_cast<void*>(nullptr)));
    ASSERT_TRUE(WaitUntil([&] { return thread.is_in_pass.load(); }));
    Helper stopper([&] { thread.Stop(); });
    stopper.WaitUntilBlocked();
    thread.may_end = true;
    stopper.Join();
    EXPECT_EQ(thread.ThreadState(), 2);
  }
}

TEST(ThreadLife, AnEmptyPassThatFailsEndsAnEventDrivenThread) {
  Sleeper thread;
  thread.is_good = false;
  thread.may_end = true;
  ASSERT_TRUE(thread.PingThread(0));
  ASSERT_TRUE(thread.Event(static_cast<void*>(nullptr)));
  EXPECT_TRUE(WaitUntil([&] { return thread.ThreadState() == 2; }));
  EXPECT_FALSE(thread.IsRunning());
  EXPECT_FALSE(thread.PingThread(1000));
}

TEST(ThreadLife, APassThatFailsEndsTheThread) {
  Worker thread;
  thread.is_tired = true;
  ASSERT_TRUE(WaitUntil([&] { return thread.ThreadState() == 2; }));
  EXPECT_FALSE(thread.IsRunning());
}

TEST(ThreadLife, StartsAgainAfterItsEnd) {
  Worker thread;
  for (int i = 0; i < 20; ++i) {
    thread.is_tired = true;
    ASSERT_TRUE(WaitUntil([&] { return thread.ThreadState() == 2; }));
    const int passes = thread.passes;
    thread.is_tired = false;
    ASSERT_TRUE(thread.Start());
    EXPECT_TRUE(WaitUntil([&] { return thread.passes > passes; }));
  }
}

TEST(ThreadLife, StartOfARunningThreadChangesNothing) {
  Worker thread;
  EXPECT_TRUE(thread.Start());
  EXPECT_TRUE(thread.PingThread(0));
  EXPECT_TRUE(thread.Start());
  EXPECT_EQ(thread.GetErrors(), 0U);
}

TEST(ThreadLife, AnEventOnAThreadThatIsDownLeavesItDown) {
  Worker thread;
  thread.Stop();
  int object = 0;
  EXPECT_FALSE(thread.Event(&object));
  EXPECT_EQ(thread.ThreadState(), 2);
  EXPECT_EQ(thread.GetErrors(), 0x10U);
}

// Without memory for a stack no thread is created, by no fault of the program.
TEST(ThreadLifeDeathTest, AThreadThatCannotBeCreatedIsAFault) {
  if (kSanitized || kEmulated) GTEST_SKIP() << "memory is for the sanitizer or emulator to limit";
  const auto start_without_memory = [] {
    const rlimit nothing{0, 0};
    setrlimit(RLIMIT_AS, &nothing);
    CThread thread;
    _exit(thread.ThreadState() == 4 && thread.GetErrors() == 0x04 && !thread.Start() ? 0 : 1);
  };
  EXPECT_EXIT(start_without_memory(), testing::ExitedWithCode(0),
              "^error: could not create thread, pthread_create failed \\(11\\)!\n");
}

// Twenty thousand in all; the sanitizers make do with a few.
class ManyThreads : public testing::TestWithParam<int> {};

TEST_P(ManyThreads, AreBuiltAndTornDownWithoutAHang) {
  const int count = kSanitized ? 250 : 2500;
  for (int i = 0; i < count; ++i) Worker thread;
}

INSTANTIATE_TEST_SUITE_P(ThreadLife, ManyThreads, testing::Range(0, 8));

// The second one would wait for ever for the end of the thread that the first has made.
TEST(ThreadLife, TwoStartsAtOnceMakeOneThread) {
  Worker thread;
  for (int i = 0; i < 500; ++i) {
    thread.is_tired = true;
    ASSERT_TRUE(WaitUntil([&] { return thread.ThreadState() == 2; }));
    thread.is_tired = false;
    std::barrier both(2);
    Helper other([&] {
      both.arrive_and_wait();
      thread.Start();
    });
    both.arrive_and_wait();
    EXPECT_TRUE(thread.Start());
    other.Join();
    ASSERT_TRUE(thread.PingThread(0));
  }
}
