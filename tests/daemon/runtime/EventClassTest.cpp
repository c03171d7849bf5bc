#include "runtime/EventClass.h"

#include <gtest/gtest.h>

#include <atomic>

#include "kit/Helper.h"

TEST(EventClass, IsCreated) { EXPECT_TRUE(CEventClass().IsCreated()); }

TEST(EventClass, ASetWakesTheWaitingThread) {
  CEventClass event;
  std::atomic<bool> woken{false};
  Helper waiter([&] {
    woken = event.Wait();
    event.Reset();
  });
  // A Set that comes before the wait is forgotten, so it is set until one counts.
  EXPECT_TRUE(WaitUntil([&] {
    event.Set();
    return waiter.IsDone();
  }));
  EXPECT_TRUE(woken);
}

TEST(EventClass, ASetThatNobodyWaitedForLeavesNoTrace) {
  CEventClass event;
  event.Set();
  Helper waiter([&] {
    event.Wait();
    event.Reset();
  });
  EXPECT_TRUE(waiter.WaitUntilBlocked());
  EXPECT_TRUE(WaitUntil([&] {
    event.Set();
    return waiter.IsDone();
  }));
}

TEST(EventClass, SetBlocksFromTheEndOfTheWaitToReset) {
  CEventClass event;
  std::atomic<bool> holds{false};
  std::atomic<bool> may_reset{false};
  Helper waiter([&] {
    event.WaitFor([] { return true; });
    holds = true;
    WaitUntil([&] { return may_reset.load(); });
    event.Reset();
  });
  ASSERT_TRUE(WaitUntil([&] { return holds.load(); }));
  Helper setter([&] { event.Set(); });
  EXPECT_TRUE(setter.WaitUntilBlocked());
  may_reset = true;
  setter.Join();
}

TEST(EventClass, AReasonFromBeforeTheWaitIsNotLost) {
  CEventClass event;
  EXPECT_TRUE(event.WaitFor([] { return true; }));
  event.Reset();
}

TEST(EventClass, AWakeUpWithoutAReasonGoesOnWaiting) {
  CEventClass event;
  std::atomic<int> looks{0};
  std::atomic<bool> reason{false};
  Helper waiter([&] {
    event.WaitFor([&] {
      ++looks;
      return reason.load();
    });
    event.Reset();
  });
  ASSERT_TRUE(WaitUntil([&] {
    event.Set();
    return looks > 3;
  }));
  EXPECT_FALSE(waiter.IsDone());
  reason = true;
  event.Set();
  waiter.Join();
}
