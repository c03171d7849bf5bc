#include "http/Ledger.h"

#include <gtest/gtest.h>

namespace hub::http {
namespace {

using model::Change;
using model::ChannelId;

TEST(LedgerTest, WhoHasHeardTheLastChangeHasNothingToHear) {
  Ledger ledger;
  ledger.Note({.after = 0, .sequence = 3, .bus = true, .cards = {5}});
  const Change change = ledger.After(3);
  EXPECT_FALSE(change.bus);
  EXPECT_TRUE(change.cards.empty());
  EXPECT_TRUE(change.channels.empty());
}

TEST(LedgerTest, WhoFellBehindHearsEachLevelOnce) {
  Ledger ledger;
  ledger.Note({.after = 0, .sequence = 1, .bus = true});
  ledger.Note({.after = 1, .sequence = 2, .channels = {{3, 6}}});
  ledger.Note({.after = 2, .sequence = 4, .channels = {{3, 6}, {15, 0}}});
  const Change change = ledger.After(1);
  EXPECT_EQ(change.after, 1U);
  EXPECT_EQ(change.sequence, 4U);
  EXPECT_FALSE(change.bus);
  EXPECT_EQ(change.channels, (std::vector<ChannelId>{{3, 6}, {15, 0}}));
}

TEST(LedgerTest, ACardThatChangedAsAWholeBringsItsChannels) {
  Ledger ledger;
  ledger.Note({.after = 0, .sequence = 1, .channels = {{5, 0}}});
  ledger.Note({.after = 1, .sequence = 2, .cards = {5}});
  EXPECT_EQ(ledger.After(0).cards, (std::vector<unsigned>{5}));
  EXPECT_TRUE(ledger.After(0).channels.empty());
}

TEST(LedgerTest, WhatThePageKeepsIsHeardOnce) {
  Ledger ledger;
  ledger.Note({.after = 0, .sequence = 1, .page = true});
  ledger.Note({.after = 1, .sequence = 2, .bus = true});
  EXPECT_TRUE(ledger.After(0).page);
  EXPECT_FALSE(ledger.After(1).page);
}

TEST(LedgerTest, OnlyTheLastChangeIsNextForItsReader) {
  Ledger ledger;
  ledger.Note({.after = 0, .sequence = 2, .bus = true});
  ledger.Note({.after = 2, .sequence = 5, .bus = true});
  EXPECT_TRUE(ledger.IsNext(2));
  EXPECT_FALSE(ledger.IsNext(1));
}

}  // namespace
}  // namespace hub::http
