#include "runtime/MutexClass.h"

#include <gtest/gtest.h>

#include "kit/Helper.h"

namespace {

// A thread that takes the mutex and gives it back.
class Visitor : public Helper {
 public:
  explicit Visitor(CMutexClass& mutex) : Helper([&mutex] { const CMutexGuard guard(mutex); }) {}
};

}  // namespace

TEST(MutexClass, IsCreated) { EXPECT_TRUE(CMutexClass().IsCreated()); }

TEST(MutexClass, KeepsOthersOutUntilItsOwnerUnlocks) {
  CMutexClass mutex;
  mutex.Lock();
  Visitor visitor(mutex);
  EXPECT_TRUE(visitor.WaitUntilBlocked());
  mutex.Unlock();
  visitor.Join();
}

TEST(MutexClass, OneUnlockReleasesTwoLocks) {
  CMutexClass mutex;
  mutex.Lock();
  mutex.Lock();
  mutex.Unlock();
  Visitor(mutex).Join();
}

TEST(MutexClass, AStrangersUnlockLeavesItLocked) {
  CMutexClass mutex;
  mutex.Lock();
  Helper([&mutex] { mutex.Unlock(); }).Join();
  Visitor visitor(mutex);
  EXPECT_TRUE(visitor.WaitUntilBlocked());
  mutex.Unlock();
  visitor.Join();
}

TEST(MutexClass, UnlockOfAFreeMutexDoesNothing) {
  CMutexClass mutex;
  mutex.Unlock();
  Visitor(mutex).Join();
}

TEST(MutexClass, KeepsTwoThreadsApart) {
  CMutexClass mutex;
  int count = 0;
  const auto add = [&] {
    for (int i = 0; i < 10'000; ++i) {
      const CMutexGuard guard(mutex);
      ++count;
    }
  };
  Helper other(add);
  add();
  other.Join();
  EXPECT_EQ(count, 20'000);
}
