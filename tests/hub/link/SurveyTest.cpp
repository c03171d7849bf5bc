#include "link/Survey.h"

#include <gtest/gtest.h>

namespace hub::link {
namespace {

using namespace std::chrono_literals;

protocol::CardNames Empty() {
  protocol::CardNames names;
  names.fill("EMPTY");
  return names;
}

protocol::CardNames WithALamp() {
  protocol::CardNames names = Empty();
  names[5] = "DIGITAL-OUTPUT";
  return names;
}

TEST(SurveyTest, CardsAreAskedForAgainAndAgain) {
  EXPECT_EQ(UntilNextTable(WithALamp(), 3s, 30s), 30s);
  EXPECT_EQ(UntilNextTable(WithALamp(), 24h, 30s), 30s);
  EXPECT_EQ(UntilNextTable(Empty(), 24h, 30s), 30s);
}

TEST(SurveyTest, WhereTheAdapterWasFoundNowTheyAreAskedForSoon) {
  EXPECT_EQ(UntilNextTable(Empty(), 0s, 30s), 2s);
  EXPECT_EQ(UntilNextTable(Empty(), 9999ms, 30s), 2s);
  EXPECT_EQ(UntilNextTable(Empty(), 10s, 30s), 30s);
}

}  // namespace
}  // namespace hub::link
