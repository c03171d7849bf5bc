#include "runtime/Task.h"

#include <gtest/gtest.h>

#include "runtime/Thread.h"
#include "kit/Wait.h"

namespace {

class Work : public CTask {
 public:
  explicit Work(bool good = true) : Good(good) {}
  bool Run() override {
    StatusWhileRunning = GetStatus();
    RunBy = pthread_self();
    return Good;
  }

  bool Good;
  TaskStatus_t StatusWhileRunning = kTaskNew;
  pthread_t RunBy = 0;
};

}  // namespace

TEST(Task, IsQueuedThenRunningThenCompleted) {
  EXPECT_EQ(kTaskQueued, 1);
  EXPECT_EQ(kTaskRunning, 2);
  EXPECT_EQ(kTaskCompleted, 3);

  Work work;
  CThread thread;
  ASSERT_TRUE(thread.PingThread(0));
  ASSERT_TRUE(thread.Event(&work));
  ASSERT_TRUE(WaitUntil([&] { return work.GetStatus() == kTaskCompleted; }));
  EXPECT_EQ(work.StatusWhileRunning, kTaskRunning);
  EXPECT_TRUE(pthread_equal(work.GetThreadId(), work.RunBy));
}

TEST(Task, OneThatFailsEndsItsThread) {
  Work work(false);
  CThread thread;
  ASSERT_TRUE(thread.PingThread(0));
  ASSERT_TRUE(thread.Event(&work));
  ASSERT_TRUE(WaitUntil([&] { return thread.ThreadState() == kThreadDown; }));
  EXPECT_EQ(work.GetStatus(), kTaskCompleted);
  EXPECT_FALSE(thread.IsRunning());
}

TEST(Task, OneThatIsRefusedIsNotQueued) {
  class Interval : public CThread {
   public:
    Interval() { SetThreadType(kIntervalDriven, 1000); }
    ~Interval() { Stop(); }
    bool OnTask() override { return true; }
  };

  Work work;
  Interval thread;
  EXPECT_FALSE(thread.Event(&work));
  EXPECT_EQ(work.GetStatus(), kTaskNew);
}
