#include "link/CardNews.h"

#include <gtest/gtest.h>

namespace hub::link {
namespace {

class CardNewsTest : public testing::Test {
 protected:
  // The table lists this at 5; what is new then.
  std::vector<std::string> List(const std::string& name) {
    protocol::CardNames names;
    names.fill("EMPTY");
    names[5] = name;
    const CardNews news(bus);
    bus.SetCards(names);
    return news.Since(bus);
  }

  model::Bus bus{"00c0ffee"};
};

TEST_F(CardNewsTest, CardsComeFallSilentAndGo) {
  using Texts = std::vector<std::string>;
  EXPECT_EQ(List("EMPTY"), Texts{});
  EXPECT_EQ(List("16 channel DIGITAL OUTPUT"), Texts{"card 5 (digital-output) has come"});
  EXPECT_EQ(List("16 channel DIGITAL OUTPUT"), Texts{});
  EXPECT_EQ(List("CARD?"), Texts{"card 5 (digital-output) does not answer"});
  EXPECT_EQ(List("EMPTY"), Texts{"card 5 (digital-output) is gone"});
  EXPECT_EQ(List("6 channel RC SERVO CONTROLLER"), Texts{"card 5 (servo) has come"});
}

}  // namespace
}  // namespace hub::link
