#include "runtime/Queue.h"

#include <gtest/gtest.h>

#include "kit/Helper.h"
#include "support/Lists.h"

TEST(Queue, ANewOneIsEmptyAndGivesAnEmptyList) {
  QEQUEUE queue;
  EXPECT_TRUE(queue.IsEmpty());
  EXPECT_EQ(queue.DeQueue(), QList());
  EXPECT_TRUE(queue.IsEmpty());
  EXPECT_EQ(queue.Size(), 0U);
}

TEST(Queue, AnEmptyListIsAnItem) {
  QEQUEUE queue;
  queue.ToQueue({});
  EXPECT_FALSE(queue.IsEmpty());
  EXPECT_EQ(queue.Size(), 1U);
  EXPECT_EQ(queue.DeQueue(), QList());
  EXPECT_TRUE(queue.IsEmpty());
}

TEST(Queue, KeepsTheOrderOfThousands) {
  QEQUEUE queue;
  for (int i = 0; i < 5000; ++i) queue.ToQueue(List(std::to_string(i)));
  EXPECT_EQ(queue.Size(), 5000U);
  for (int i = 0; i < 5000; ++i) ASSERT_EQ(Text(queue.DeQueue()), std::to_string(i));
  EXPECT_TRUE(queue.IsEmpty());
}

TEST(Queue, KeepsItsOwnCopy) {
  QEQUEUE queue;
  QList list = List({1, 2});
  queue.ToQueue(list);
  list.push_back(3);
  EXPECT_EQ(queue.DeQueue(), List({1, 2}));
  EXPECT_EQ(list, List({1, 2, 3}));
}

TEST(Queue, FillingUnderItsOwnLockReleasesTheLock) {
  QEQUEUE queue;
  queue.Lock.Lock();
  queue.ToQueue(List({7}));
  Helper([&] { queue.ToQueue(List({8})); }).Join();  // gets the lock
  EXPECT_EQ(queue.DeQueue(), List({7}));
  EXPECT_EQ(queue.DeQueue(), List({8}));
}

TEST(Queue, PassesItemsFromTwoThreadsToAThird) {
  QEQUEUE queue;
  const auto fill = [&](int value) {
    for (int i = 0; i < 2000; ++i) queue.ToQueue(List({value}));
  };
  Helper first([&] { fill(1); });
  Helper second([&] { fill(2); });
  int sum = 0;
  for (int taken = 0; taken < 4000;) {
    if (queue.IsEmpty()) {
      std::this_thread::yield();
      continue;
    }
    sum += queue.DeQueue().front();
    ++taken;
  }
  EXPECT_EQ(sum, 2000 * 1 + 2000 * 2);
}
