#include "runtime/Task.h"

#include <gtest/gtest.h>

#include "kit/Wait.h"
#include "runtime/Thread.h"

namespace {

class Work : public CTask {
 public:
  explicit Work(bool is_good = true) : is_good_(is_good) {}
  bool Run() override {
    status_while_running = GetStatus();
    run_by = pthread_self();
    return is_good_;
  }

  TaskStatus_t status_while_running = kTaskNew;
  pthread_t run_by = 0;

 private:
  bool is_good_;
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
  EXPECT_EQ(work.status_while_running, kTaskRunning);
  EXPECT_TRUE(pthread_equal(work.GetThreadId(), work.run_by));
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
