// What the blocks of a poll reply do to a card's record.
#include <gtest/gtest.h>

#include <array>
#include <string>
#include <vector>

#include "bus/PerifCard.h"

namespace {

bool Take(PERIFCARD& card, std::initializer_list<int> blocks) {
  const std::vector<unsigned char> bytes(blocks.begin(), blocks.end());
  return card.TakeInput(bytes);
}

std::string Changed(const PERIFCARD& card) {
  std::string flags;
  for (std::size_t b = 0; b < 8; ++b) flags += card.BlockChanged[b] != 0 ? '1' : '0';
  return flags;
}

}  // namespace

TEST(CardInput, ADigitalInputMarksTheBlocksThatDiffer) {
  PERIFCARD card;
  card.setCardData(0x04, 3);
  EXPECT_FALSE(Take(card, {0, 0}));
  EXPECT_TRUE(Take(card, {0, 7}));
  EXPECT_EQ(Changed(card), "01000000");
  EXPECT_TRUE(Take(card, {1, 8, 99}));
  EXPECT_EQ(Changed(card), "11000000");
  EXPECT_EQ(card.BlockData[2], 0);
  EXPECT_FALSE(Take(card, {1, 8}));
  EXPECT_EQ(Changed(card), "00000000");
}

TEST(CardInput, ADigitalInputLeavesAloneWhatAShortReplyLacks) {
  PERIFCARD card;
  card.setCardData(0x04, 3);
  Take(card, {1, 2});
  EXPECT_TRUE(Take(card, {5}));
  EXPECT_EQ(card.BlockData[0], 5);
  EXPECT_EQ(card.BlockData[1], 2);
  EXPECT_FALSE(Take(card, {}));
  EXPECT_EQ(card.BlockData[0], 5);
}

TEST(CardInput, AKeyMatrixHasOneBlock) {
  PERIFCARD card;
  card.setCardData(0x08, 3);
  EXPECT_TRUE(Take(card, {0xFE, 9}));
  EXPECT_EQ(card.BlockData[0], 0xFE);
  EXPECT_EQ(card.BlockData[1], 0);
  EXPECT_EQ(Changed(card), "10000000");
  EXPECT_FALSE(Take(card, {}));
  EXPECT_EQ(card.BlockData[0], 0xFE);
}

TEST(CardInput, AnAnalogueInputReportsAtItsSeventhReply) {
  PERIFCARD card;
  card.setCardData(0x07, 15);
  for (const int v : {10, 20, 30, 40, 50, 61}) EXPECT_FALSE(Take(card, {v, 255, 0, 1, 0, 6}));
  EXPECT_TRUE(Take(card, {99, 99, 99, 99, 99, 99}));
  EXPECT_EQ(card.BlockData[0], 35);  // 211 / 6 = 35.2
  EXPECT_EQ(card.BlockData[1], 255);
  EXPECT_EQ(card.BlockData[2], 0);
  EXPECT_EQ(card.BlockData[3], 1);
  EXPECT_EQ(card.BlockData[5], 6);
  EXPECT_EQ(Changed(card), "11010100");
  EXPECT_EQ(card.SampleCount, 0);
  EXPECT_EQ(card.AnalogueSums, (std::array<int, 6>{}));
}

TEST(CardInput, AnEqualAverageIsNoChange) {
  PERIFCARD card;
  card.setCardData(0x07, 15);
  for (int i = 0; i < 7; ++i) Take(card, {8, 0, 0, 0, 0, 0});
  for (int i = 0; i < 7; ++i) EXPECT_FALSE(Take(card, {8, 0, 0, 0, 0, 0})) << i;
  EXPECT_EQ(card.BlockData[0], 8);
}

TEST(CardInput, AnAnalogueInputTakesAbsentBytesAsZero) {
  PERIFCARD card;
  card.setCardData(0x07, 15);
  for (int i = 0; i < 6; ++i) Take(card, {12});
  Take(card, {});
  EXPECT_EQ(card.BlockData[0], 12);
  EXPECT_EQ(card.BlockData[5], 0);
}

TEST(CardInput, OtherKindsIgnoreInputButForgetTheirChanges) {
  for (const int type : {0x00, 0x03, 0x05, 0x06, 0x09, 0x0A, 0xFF}) {
    PERIFCARD card;
    card.setCardData(static_cast<unsigned char>(type), 1);
    card.BlockData.fill(0x5A);
    card.BlockChanged.fill(1);
    EXPECT_FALSE(Take(card, {1, 2, 3, 4, 5, 6})) << type;
    EXPECT_EQ(card.BlockData[0], 0x5A) << type;
    EXPECT_EQ(Changed(card), "00000000") << type;
  }
}
