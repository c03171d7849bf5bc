#include "access/Sessions.h"

#include <gtest/gtest.h>

#include "hub/FakeClock.h"

namespace hub::access {
namespace {

using namespace std::chrono_literals;
using std::chrono::days;

class SessionsTest : public testing::Test {
 protected:
  FakeClock clock;
  Sessions sessions{clock, {}};
};

TEST_F(SessionsTest, AreFoundByTheirSecret) {
  const auto opened = sessions.Open("operator");
  const auto found = sessions.Find(opened.secret);
  ASSERT_TRUE(found);
  EXPECT_EQ(found->account, "operator");
  EXPECT_EQ(found->id, opened.id);
}

TEST_F(SessionsTest, AreFoundByNothingElse) {
  const auto opened = sessions.Open("operator");
  const std::string hash = sessions.Records()[0].secret;
  const std::string cut = opened.secret.substr(0, opened.secret.size() - 1);
  for (const std::string& wrong :
       {std::string(), hash, cut, opened.secret + "A", opened.id, std::string("operator")})
    EXPECT_FALSE(sessions.Find(wrong)) << wrong;
}

TEST_F(SessionsTest, NoTwoAreAlike) {
  const auto one = sessions.Open("operator");
  const auto other = sessions.Open("operator");
  EXPECT_NE(one.secret, other.secret);
  EXPECT_NE(one.id, other.id);
  EXPECT_EQ(one.secret.size(), 43U);
}

TEST_F(SessionsTest, EndAfterThirtyDaysWithoutUse) {
  const auto used = sessions.Open("operator");
  const auto unused = sessions.Open("operator");
  clock.Pass(days(29));
  EXPECT_TRUE(sessions.Find(used.secret));
  clock.Pass(days(1) - 1ms);
  EXPECT_EQ(sessions.Records().size(), 2U);
  clock.Pass(1ms);
  EXPECT_FALSE(sessions.Find(unused.secret));
  EXPECT_TRUE(sessions.Find(used.secret));
  EXPECT_EQ(sessions.Records().size(), 1U);
}

TEST_F(SessionsTest, AConnectionThatStaysOpenIsAUse) {
  const auto opened = sessions.Open("operator");
  clock.Pass(days(29));
  EXPECT_TRUE(sessions.Use(opened.id));
  clock.Pass(days(29));
  EXPECT_TRUE(sessions.Find(opened.secret));
  EXPECT_FALSE(sessions.Use("0123456789abcdef"));
}

TEST_F(SessionsTest, OutliveTheHubAsHashes) {
  const auto opened = sessions.Open("operator");
  clock.Pass(days(10));
  const auto records = sessions.Records();
  ASSERT_EQ(records.size(), 1U);
  EXPECT_EQ(records[0].secret.find(opened.secret), std::string::npos);
  EXPECT_EQ(clock.Now() - records[0].used, days(10));
  Sessions again(clock, records);
  EXPECT_TRUE(again.Find(opened.secret));
}

TEST_F(SessionsTest, AgeWhileTheHubIsDown) {
  const auto opened = sessions.Open("operator");
  clock.Pass(days(10));
  const auto records = sessions.Records();
  clock.Pass(days(20) - 1s);
  EXPECT_TRUE(Sessions(clock, records).Find(opened.secret));
  clock.Pass(1s);
  EXPECT_FALSE(Sessions(clock, records).Find(opened.secret));
}

TEST_F(SessionsTest, DoNotEndWhereTheClockIsSet) {
  const auto opened = sessions.Open("operator");
  clock.Jump(days(20'000));
  EXPECT_TRUE(sessions.Find(opened.secret));
  clock.Jump(-days(20'000));
  EXPECT_TRUE(sessions.Find(opened.secret));
  const auto records = sessions.Records();
  clock.Jump(-days(20'000));
  Sessions earlier(clock, records);
  EXPECT_TRUE(earlier.Find(opened.secret));
  clock.Pass(days(30));
  EXPECT_FALSE(earlier.Find(opened.secret));
}

TEST_F(SessionsTest, CloseOneByOneOrAllOfAnAccount) {
  const auto one = sessions.Open("operator");
  const auto two = sessions.Open("operator");
  const auto three = sessions.Open("operator");
  const auto guest = sessions.Open("guest");
  EXPECT_TRUE(sessions.Close(one.id));
  EXPECT_FALSE(sessions.Close(one.id));
  EXPECT_FALSE(sessions.Find(one.secret));
  EXPECT_TRUE(sessions.Find(two.secret));
  EXPECT_EQ(sessions.CloseAll("operator"), (std::vector<std::string>{two.id, three.id}));
  EXPECT_FALSE(sessions.Find(two.secret));
  EXPECT_FALSE(sessions.Find(three.secret));
  EXPECT_TRUE(sessions.Find(guest.secret));
}

TEST_F(SessionsTest, AnAccountHasSixtyFourAndLosesTheOneUnusedLongest) {
  const auto guest = sessions.Open("guest");
  const auto first = sessions.Open("operator");
  clock.Pass(1h);
  const auto second = sessions.Open("operator");
  clock.Pass(1h);
  EXPECT_TRUE(sessions.Find(first.secret));
  for (int i = 0; i < 62; ++i) EXPECT_FALSE(sessions.Open("operator").replaced);
  EXPECT_EQ(sessions.Open("operator").replaced, second.id);
  EXPECT_FALSE(sessions.Find(second.secret));
  EXPECT_TRUE(sessions.Find(first.secret));
  EXPECT_TRUE(sessions.Find(guest.secret));
}

TEST_F(SessionsTest, AUseIsNotedOnceAnHour) {
  const auto opened = sessions.Open("operator");
  clock.Pass(1h - 1ms);
  EXPECT_FALSE(sessions.Find(opened.secret)->noted);
  clock.Pass(1ms);
  EXPECT_TRUE(sessions.Find(opened.secret)->noted);
  EXPECT_FALSE(sessions.Find(opened.secret)->noted);
}

}  // namespace
}  // namespace hub::access
