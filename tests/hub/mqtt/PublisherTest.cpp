#include "mqtt/Publisher.h"

#include <gtest/gtest.h>

namespace hub::mqtt {
namespace {

using namespace std::chrono_literals;

class PublisherTest : public testing::Test {
 protected:
  // What may go out now, each as "topic=payload", a retained one with "!" behind it.
  std::string Sent() {
    std::string all;
    while (const auto message = publisher.Next(now)) {
      if (!all.empty()) all += ' ';
      all += message->topic + '=' + message->payload + (message->is_retained ? "!" : "");
    }
    return all;
  }
  void AllTaken() {
    for (size_t i = 0; i < Publisher::kMostUnderWay; ++i) publisher.Taken();
  }
  void Press(const std::string& code) { publisher.Tell({"e", code}, now); }

  api::Messages count;
  Publisher publisher{count};
  model::SteadyTime now{1000s};
};

TEST_F(PublisherTest, ALevelIsToldOnceAndAgainAfterEachConnection) {
  publisher.Keep("a", "1");
  EXPECT_EQ(Sent(), "");
  publisher.Open();
  EXPECT_EQ(Sent(), "a=1!");
  publisher.Keep("a", "1");
  EXPECT_EQ(Sent(), "");
  publisher.Keep("a", "2");
  EXPECT_EQ(Sent(), "a=2!");
  publisher.Close();
  publisher.Open();
  EXPECT_EQ(Sent(), "a=2!");
}

TEST_F(PublisherTest, LevelsComeInTheOrderInWhichTheyWereFirstKept) {
  for (const char* topic : {"z", "b", "m"}) publisher.Keep(topic, "1");
  publisher.Open();
  EXPECT_EQ(Sent(), "z=1! b=1! m=1!");
  publisher.Open();
  EXPECT_EQ(Sent(), "z=1! b=1! m=1!");
}

TEST_F(PublisherTest, WhatWaitsIsMerged) {
  publisher.Open();
  publisher.Keep("a", "1");
  publisher.Keep("b", "1");
  publisher.Keep("a", "2");
  publisher.Keep("a", "3");
  EXPECT_EQ(Sent(), "a=3! b=1!");
  EXPECT_EQ(count.merged, 2U);
  EXPECT_EQ(count.sent, 2U);
}

TEST_F(PublisherTest, NoMoreThanTwentyAreUnderWay) {
  publisher.Open();
  for (int i = 0; i < 26; ++i) publisher.Keep("t" + std::to_string(i), "1");
  Sent();
  EXPECT_EQ(count.sent, 20U);
  publisher.Taken();
  EXPECT_EQ(Sent(), "t20=1!");
  publisher.Keep("t25", "2");  // is still waiting
  AllTaken();
  EXPECT_EQ(Sent(), "t21=1! t22=1! t23=1! t24=1! t25=2!");
}

TEST_F(PublisherTest, AnEventGoesAheadAndIsNotRetained) {
  publisher.Open();
  publisher.Keep("a", "1");
  Press("5");
  EXPECT_EQ(Sent(), "e=5 a=1!");
}

TEST_F(PublisherTest, AnEventOfTheTimeWithoutABrokerIsDropped) {
  Press("5");
  publisher.Open();
  EXPECT_EQ(Sent(), "");
  Press("6");
  publisher.Close();
  publisher.Open();
  EXPECT_EQ(Sent(), "");
  EXPECT_EQ(count.dropped, 2U);
}

TEST_F(PublisherTest, AnEventIsNeverLate) {
  publisher.Open();
  for (int i = 0; i < 20; ++i) publisher.Keep("t" + std::to_string(i), "1");
  Sent();
  Press("5");  // no room
  now += 1001ms;
  AllTaken();
  EXPECT_EQ(Sent(), "");
  EXPECT_EQ(count.dropped, 1U);
}

TEST_F(PublisherTest, NoEventGoesBehindAReceiptThatIsOverdue) {
  publisher.Open();
  publisher.Keep("a", "1");
  Sent();
  now += 1001ms;
  Press("5");
  EXPECT_EQ(Sent(), "");
  publisher.Taken();
  Press("6");
  EXPECT_EQ(Sent(), "e=6");
  EXPECT_EQ(count.dropped, 1U);
}

TEST_F(PublisherTest, NoMoreThanItsBoundOfEventsWaits) {
  publisher.Open();
  for (int i = 0; i < 300; ++i) Press("5");
  EXPECT_EQ(count.dropped, 300U - 256U);
}

TEST_F(PublisherTest, ATopicThatIsTakenBackIsEmptiedOnceAndForgotten) {
  publisher.Open();
  publisher.Keep("a", "1");
  Sent();
  publisher.TakeBack("a");
  EXPECT_FALSE(publisher.Keeps("a"));
  EXPECT_EQ(Sent(), "a=!");
  AllTaken();
  publisher.Open();
  EXPECT_EQ(Sent(), "");
}

TEST_F(PublisherTest, ARemovalThatWasNotAcknowledgedIsToldAgain) {
  publisher.Open();
  publisher.Keep("a", "1");
  Sent();
  publisher.TakeBack("a");
  EXPECT_EQ(Sent(), "a=!");
  publisher.Close();
  publisher.Open();
  EXPECT_EQ(Sent(), "a=!");
}

TEST_F(PublisherTest, OnlyWhatWasToldBelowANameIsTakenBack) {
  publisher.Keep("x/told", "1");
  publisher.Keep("y/other", "1");
  publisher.Open();
  Sent();
  publisher.Keep("x/new", "1");
  publisher.TakeBackBelow("x/");
  EXPECT_EQ(Sent(), "x/told=!");
}

TEST_F(PublisherTest, WhatIsSomebodyElsesNowIsNotTakenBack) {
  publisher.Keep("x/a", "1");
  publisher.Open();
  Sent();
  publisher.Disown("x/");
  publisher.TakeBackBelow("x/");
  EXPECT_EQ(Sent(), "");
}

TEST_F(PublisherTest, WhatSomebodyHasSpoiltIsToldAgain) {
  publisher.Keep("x/a", "1");
  publisher.Keep("y/a", "1");
  publisher.Open();
  Sent();
  publisher.TellAgainBelow("x/");
  EXPECT_EQ(Sent(), "x/a=1!");
}

TEST_F(PublisherTest, ItIsIdleWhenAllIsTaken) {
  publisher.Open();
  EXPECT_TRUE(publisher.IsIdle());
  publisher.Keep("a", "1");
  EXPECT_FALSE(publisher.IsIdle());
  EXPECT_TRUE(publisher.IsWaiting("a"));
  Sent();
  EXPECT_FALSE(publisher.IsIdle());
  EXPECT_FALSE(publisher.IsWaiting("a"));
  publisher.Taken();
  EXPECT_TRUE(publisher.IsIdle());
}

TEST_F(PublisherTest, TheNumberOfTopicsIsBounded) {
  publisher.Open();
  for (int i = 0; i < 5000; ++i) publisher.Keep("t" + std::to_string(i), "1");
  EXPECT_TRUE(publisher.Keeps("t4095"));
  EXPECT_FALSE(publisher.Keeps("t4096"));
}

}  // namespace
}  // namespace hub::mqtt
