#include "access/Throttle.h"

#include <gtest/gtest.h>

#include "hub/FakeClock.h"

namespace hub::access {
namespace {

using namespace std::chrono_literals;

class ThrottleTest : public testing::Test {
 protected:
  // Seconds to wait; 0 where the try was let through.
  long Try(std::string_view account, std::string_view address) {
    return throttle.Try(account, address, clock.Steady()).value_or(0s).count();
  }

  void UseUp(std::string_view account, std::string_view address) {
    for (int i = 0; i < 5; ++i) ASSERT_EQ(Try(account, address), 0);
    ASSERT_EQ(Try(account, address), 1);
  }

  FakeClock clock;
  Throttle throttle;
};

TEST_F(ThrottleTest, FiveTriesAreFree) {
  for (int i = 0; i < 5; ++i) EXPECT_EQ(Try("operator", "192.0.2.1"), 0) << i;
  EXPECT_EQ(Try("operator", "192.0.2.1"), 1);
}

TEST_F(ThrottleTest, ThenThePauseDoublesFromOneSecondToSixty) {
  UseUp("operator", "192.0.2.1");
  for (const long pause : {1, 2, 4, 8, 16, 32, 60, 60, 60}) {
    EXPECT_EQ(Try("operator", "192.0.2.1"), pause);
    clock.Pass(std::chrono::seconds(pause) - 1ms);
    EXPECT_EQ(Try("operator", "192.0.2.1"), 1) << "a millisecond too early";
    clock.Pass(1ms);
    EXPECT_EQ(Try("operator", "192.0.2.1"), 0);
  }
}

TEST_F(ThrottleTest, ATryThatHasToWaitIsNotCounted) {
  UseUp("operator", "192.0.2.1");
  for (int i = 0; i < 100; ++i) EXPECT_EQ(Try("operator", "192.0.2.1"), 1);
  clock.Pass(1s);
  EXPECT_EQ(Try("operator", "192.0.2.1"), 0);
  EXPECT_EQ(Try("operator", "192.0.2.1"), 2);
}

TEST_F(ThrottleTest, OtherAddressesAndAccountsAreNotSlowed) {
  UseUp("operator", "192.0.2.1");
  EXPECT_EQ(Try("operator", "192.0.2.2"), 0);
  EXPECT_EQ(Try("guest", "192.0.2.1"), 0);
  EXPECT_EQ(Try("operator", ""), 0);
}

TEST_F(ThrottleTest, ASuccessOfOnesOwnDoesNotClearOtherPairs) {
  UseUp("operator", "192.0.2.1");
  Try("guest", "192.0.2.1");
  throttle.Clear("guest", "192.0.2.1");
  throttle.Clear("operator", "192.0.2.2");
  EXPECT_EQ(Try("operator", "192.0.2.1"), 1);
  throttle.Clear("operator", "192.0.2.1");
  EXPECT_EQ(Try("operator", "192.0.2.1"), 0);
}

TEST_F(ThrottleTest, AnIpv6ClientIsItsWholeNetwork) {
  UseUp("operator", "2001:db8:1:2:aaaa::1");
  EXPECT_EQ(Try("operator", "2001:db8:1:2:bbbb::2"), 1);
  EXPECT_EQ(Try("operator", "2001:0DB8:0001:0002:ffff:ffff:ffff:ffff"), 1);
  EXPECT_EQ(Try("operator", "2001:db8:1:3:aaaa::1"), 0);
}

TEST_F(ThrottleTest, AnIpv4AddressIsTheSameInsideOfIpv6) {
  UseUp("operator", "192.0.2.1");
  EXPECT_EQ(Try("operator", "::ffff:192.0.2.1"), 1);
  EXPECT_EQ(Try("operator", "::ffff:192.0.2.2"), 0);
}

TEST_F(ThrottleTest, AnHourWithoutATryBeginsAnew) {
  UseUp("operator", "192.0.2.1");
  clock.Pass(1h - 1ms);
  EXPECT_EQ(Try("operator", "192.0.2.1"), 0);
  EXPECT_EQ(Try("operator", "192.0.2.1"), 2);
  clock.Pass(1h);
  for (int i = 0; i < 5; ++i) EXPECT_EQ(Try("operator", "192.0.2.1"), 0);
}

TEST_F(ThrottleTest, ItsTableIsBoundedAndTheLongestIdleGoes) {
  UseUp("operator", "192.0.2.1");
  clock.Pass(1ms);
  UseUp("operator", "192.0.2.2");
  for (int i = 0; i < 4094; ++i) {
    clock.Pass(1ms);
    const std::string number = std::to_string(i);
    Try("name" + number, "10.0." + std::to_string(i / 256) + "." + std::to_string(i % 256));
  }
  EXPECT_EQ(throttle.Pairs(), 4096U);
  throttle.Clear("operator", "192.0.2.2");
  UseUp("operator", "192.0.2.2");
  clock.Pass(1ms);
  Try("one more", "192.0.2.3");
  EXPECT_EQ(throttle.Pairs(), 4096U);
  EXPECT_EQ(Try("operator", "192.0.2.2"), 1) << "tried since";
  EXPECT_EQ(Try("operator", "192.0.2.1"), 0) << "forgotten";
}

TEST_F(ThrottleTest, ANetworkHasThirtyFreeTriesWhateverNamesItTries) {
  for (int i = 0; i < 30; ++i) EXPECT_EQ(Try("name" + std::to_string(i), "192.0.2.1"), 0) << i;
  for (int i = 30; i < 40; ++i) {
    EXPECT_EQ(Try("name" + std::to_string(i), "192.0.2.1"), 1);
    EXPECT_EQ(Try("name" + std::to_string(i), "192.0.2.2"), 0) << "another network";
    clock.Pass(1s);
    EXPECT_EQ(Try("name" + std::to_string(i), "192.0.2.1"), 0);
  }
  clock.Pass(1h);
  for (int i = 0; i < 30; ++i) EXPECT_EQ(Try("name" + std::to_string(i), "192.0.2.1"), 0) << i;
}

TEST_F(ThrottleTest, ASuccessIsNoTryOfItsNetworkAndWipesOutNoOther) {
  for (int i = 0; i < 100; ++i) {
    EXPECT_EQ(Try("operator", "192.0.2.1"), 0);
    throttle.Clear("operator", "192.0.2.1");
  }
  for (int i = 0; i < 30; ++i) EXPECT_EQ(Try("name" + std::to_string(i), "192.0.2.1"), 0);
  EXPECT_EQ(Try("one more", "192.0.2.1"), 1);
  clock.Pass(1s);
  EXPECT_EQ(Try("operator", "192.0.2.1"), 0);
  throttle.Clear("operator", "192.0.2.1");
  EXPECT_EQ(Try("one more", "192.0.2.1"), 1);
}

TEST_F(ThrottleTest, NamesThatNobodyCanHaveShareARow) {
  for (int i = 0; i < 5; ++i) {
    const std::string name = std::string(100'000, 'x') + std::to_string(i);
    EXPECT_EQ(Try(name, "192.0.2.1"), 0);
  }
  EXPECT_EQ(throttle.Pairs(), 1U);
  EXPECT_EQ(Try(std::string(33, 'x'), "192.0.2.1"), 1);
  EXPECT_EQ(Try(std::string(32, 'x'), "192.0.2.1"), 0);
}

}  // namespace
}  // namespace hub::access
