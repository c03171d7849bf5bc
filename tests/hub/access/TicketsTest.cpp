#include "access/Tickets.h"

#include <gtest/gtest.h>

#include "hub/FakeClock.h"

namespace hub::access {
namespace {

using namespace std::chrono_literals;

class TicketsTest : public testing::Test {
 protected:
  std::string Make(const std::string& account) {
    return tickets.Make({account, Role::kUse, "0123456789abcdef", "192.0.2.1"}, clock.Steady());
  }
  std::optional<Caller> Take(const std::string& ticket, std::string_view from = "192.0.2.1") {
    return tickets.Take(ticket, from, clock.Steady());
  }

  FakeClock clock;
  Tickets tickets;
};

TEST_F(TicketsTest, StandForTheirCallerOnce) {
  const std::string ticket = Make("operator");
  const auto caller = Take(ticket);
  ASSERT_TRUE(caller);
  EXPECT_EQ(caller->account, "operator");
  EXPECT_EQ(caller->role, Role::kUse);
  EXPECT_EQ(caller->session, "0123456789abcdef");
  EXPECT_FALSE(Take(ticket));
  EXPECT_EQ(tickets.Count(), 0U);
}

TEST_F(TicketsTest, LastForFiveSeconds) {
  const std::string in_time = Make("operator");
  clock.Pass(5s);
  EXPECT_TRUE(Take(in_time));
  const std::string late = Make("operator");
  clock.Pass(5s + 1ms);
  EXPECT_FALSE(Take(late));
}

TEST_F(TicketsTest, AreGoodForTheSameAddressOnly) {
  EXPECT_FALSE(Take(Make("operator"), "192.0.2.2"));
  EXPECT_FALSE(Take(Make("operator"), ""));
}

TEST_F(TicketsTest, AreUsedUpAtAnotherAddress) {
  const std::string ticket = Make("operator");
  EXPECT_FALSE(Take(ticket, "192.0.2.2"));
  EXPECT_FALSE(Take(ticket));
}

TEST_F(TicketsTest, EmptyAndCutOnesAreNone) {
  const std::string ticket = Make("operator");
  EXPECT_FALSE(Take(""));
  EXPECT_FALSE(Take(ticket.substr(1)));
  EXPECT_TRUE(Take(ticket));
}

TEST_F(TicketsTest, AreBoundedAndTheOldestGoes) {
  const std::string first = Make("first");
  const std::string second = Make("second");
  for (int i = 0; i < 1023; ++i) Make("more");
  EXPECT_EQ(tickets.Count(), 1024U);
  EXPECT_FALSE(Take(first));
  EXPECT_TRUE(Take(second));
}

TEST_F(TicketsTest, OldOnesAreNotKept) {
  for (int i = 0; i < 100; ++i) Make("operator");
  clock.Pass(6s);
  Make("operator");
  EXPECT_EQ(tickets.Count(), 1U);
}

}  // namespace
}  // namespace hub::access
