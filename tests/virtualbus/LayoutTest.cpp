#include "panel/Layout.h"

#include <gtest/gtest.h>

#include "panel/AnalogueHistory.h"

namespace virtualbus {
namespace {

const std::vector<CardBox> kBoxes{{0, 4}, {3, 2}, {4, 4}, {14, 7}};

TEST(Layout, UsesTheLowestHeightThatFits) {
  EXPECT_EQ(CardsHeight(kBoxes, 1, 100), 17);
  EXPECT_EQ(CardsHeight(kBoxes, 2, 100), 10);
  EXPECT_EQ(CardsHeight(kBoxes, 4, 100), 7);
  EXPECT_EQ(CardsHeight(kBoxes, 1, 8), 8);
  EXPECT_EQ(CardsHeight({}, 2, 8), 1);
}

TEST(Layout, FillsColumnsFromTheLeft) {
  const auto places = PlaceCards(kBoxes, 10);
  ASSERT_EQ(places.size(), 4U);
  EXPECT_EQ(places[2].row, 6);
  EXPECT_EQ(places[2].column, 0);
  EXPECT_EQ(places[3].row, 0);
  EXPECT_EQ(places[3].column, 1);
}

TEST(Layout, ABoxHigherThanTheAreaGetsItsOwnColumn) {
  const auto places = PlaceCards(kBoxes, 3);
  for (int i = 0; i < 4; ++i) EXPECT_EQ(places[static_cast<size_t>(i)].column, i);
}

TEST(AnalogueHistory, KeepsTheLastMinuteAsPeaks) {
  AnalogueInput card;
  AnalogueHistory history;
  EXPECT_FALSE(history.Peaks(0, 15).back());
  card.Inputs()[0] = 200;
  history.Sample(card);
  card.Inputs()[0] = 10;
  history.Sample(card);
  EXPECT_EQ(history.Peaks(0, 15).back(), 200);
  EXPECT_FALSE(history.Peaks(0, 15).front());
  for (int i = 0; i < 60; ++i) history.Sample(card);
  for (const auto& peak : history.Peaks(0, 15)) EXPECT_EQ(peak, 10);
}

}  // namespace
}  // namespace virtualbus
