#include "access/FairQueue.h"

#include <gtest/gtest.h>

namespace hub::access {
namespace {

std::string PopAll(FairQueue<std::string>& queue) {
  std::string order;
  while (const auto job = queue.Pop()) order += *job + " ";
  return order;
}

TEST(FairQueue, ServesALaneInItsOrder) {
  FairQueue<std::string> queue;
  for (const char* job : {"1", "2", "3"}) queue.Push("a", job);
  EXPECT_EQ(PopAll(queue), "1 2 3 ");
  EXPECT_EQ(queue.Pop(), std::nullopt);
}

TEST(FairQueue, LanesTakeTurns) {
  FairQueue<std::string> queue;
  for (const char* job : {"a1", "a2", "a3"}) queue.Push("a", job);
  queue.Push("b", "b1");
  queue.Push("b", "b2");
  queue.Push("c", "c1");
  EXPECT_EQ(PopAll(queue), "a1 b1 c1 a2 b2 a3 ");
}

TEST(FairQueue, ALaneThatWasServedStandsBehindTheOthers) {
  FairQueue<std::string> queue;
  queue.Push("a", "a1");
  queue.Push("a", "a2");
  queue.Push("b", "b1");
  EXPECT_EQ(queue.Pop(), "a1");
  queue.Push("a", "a3");
  EXPECT_EQ(PopAll(queue), "b1 a2 a3 ");
}

TEST(FairQueue, ALaneHasRoomForFour) {
  FairQueue<std::string> queue;
  for (const char* job : {"1", "2", "3", "4"}) {
    EXPECT_TRUE(queue.HasRoom("a"));
    queue.Push("a", job);
  }
  EXPECT_FALSE(queue.HasRoom("a"));
  EXPECT_TRUE(queue.HasRoom("b"));
  queue.Pop();
  EXPECT_TRUE(queue.HasRoom("a"));
}

TEST(FairQueue, AboveThirtyTwoEachLaneHasRoomForOne) {
  FairQueue<std::string> queue;
  for (int i = 0; i < 8; ++i)
    for (const char* job : {"1", "2", "3", "4"}) queue.Push("lane " + std::to_string(i), job);
  EXPECT_TRUE(queue.HasRoom("new"));
  queue.Push("new", "job");
  EXPECT_FALSE(queue.HasRoom("new"));
  queue.Pop();
  EXPECT_FALSE(queue.HasRoom("lane 0")) << "32 are left";
  queue.Pop();
  EXPECT_TRUE(queue.HasRoom("lane 0"));
}

TEST(FairQueue, ThereAreTwoHundredAndFiftySixLanes) {
  FairQueue<std::string> queue;
  for (int i = 0; i < 256; ++i) {
    EXPECT_TRUE(queue.HasRoom(std::to_string(i)));
    queue.Push(std::to_string(i), "job");
  }
  EXPECT_FALSE(queue.HasRoom("new"));
  queue.Pop();
  EXPECT_TRUE(queue.HasRoom("new"));
}

TEST(FairQueue, TheLaneWithoutANameHasItsPlacesHoweverManyWait) {
  FairQueue<std::string> queue;
  for (int i = 0; i < 256; ++i) queue.Push(std::to_string(i), "job");
  for (const char* job : {"1", "2", "3", "4"}) {
    EXPECT_TRUE(queue.HasRoom(""));
    queue.Push("", job);
  }
  EXPECT_FALSE(queue.HasRoom(""));
}

}  // namespace
}  // namespace hub::access
