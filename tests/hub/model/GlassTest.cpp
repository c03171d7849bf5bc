#include "model/Glass.h"

#include <gtest/gtest.h>

namespace hub::model {
namespace {

using protocol::LcdControl;
using Rows = std::vector<std::string>;

TEST(Glass, ATextStandsWhereItWasWritten) {
  Glass glass(2, 8);
  glass.Write(3, 1, "cat");
  EXPECT_EQ(glass.Rows(), (Rows{"        ", "   cat  "}));
}

TEST(Glass, ATextRunsOnIntoTheNextRowAndStopsAtTheEnd) {
  Glass glass(2, 4);
  glass.Write(2, 0, "abcdefgh");
  EXPECT_EQ(glass.Rows(), (Rows{"  ab", "cdef"}));
}

TEST(Glass, APlaceThatItDoesNotHaveShowsNothing) {
  Glass glass(2, 4);
  glass.Write(4, 0, "x");
  glass.Write(0, 2, "x");
  EXPECT_EQ(glass.Rows(), (Rows{"    ", "    "}));
  EXPECT_EQ(glass.Room(4, 0), 0U);
  EXPECT_EQ(glass.Room(1, 2), 0U);
  EXPECT_EQ(glass.Room(1, 1), 3U);
}

TEST(Glass, WhatCannotBePrintedIsABlank) {
  Glass glass(1, 4);
  glass.Write(0, 0, std::string("a\0\x7F\xC3", 4));
  EXPECT_EQ(glass.Rows(), (Rows{"a   "}));
}

TEST(Glass, IsKnownOnceItWasCleared) {
  Glass glass(1, 4);
  glass.Write(0, 0, "abcd");
  EXPECT_FALSE(glass.IsKnown());
  glass.Control(LcdControl::kClear);
  EXPECT_TRUE(glass.IsKnown());
  EXPECT_EQ(glass.Rows(), (Rows{"    "}));
}

TEST(Glass, SwitchesAreUnknownUntilTheyWereSet) {
  Glass glass(1, 4);
  EXPECT_EQ(glass.Light(), std::nullopt);
  EXPECT_EQ(glass.Cursor(), std::nullopt);
  EXPECT_EQ(glass.Blink(), std::nullopt);
  glass.Control(LcdControl::kLightOn);
  glass.Control(LcdControl::kCursorOff);
  glass.Control(LcdControl::kBlinkOn);
  EXPECT_EQ(glass.Light(), true);
  EXPECT_EQ(glass.Cursor(), false);
  EXPECT_EQ(glass.Blink(), true);
  glass.Control(LcdControl::kLightOff);
  glass.Control(LcdControl::kCursorOn);
  glass.Control(LcdControl::kBlinkOff);
  EXPECT_EQ(glass.Light(), false);
  EXPECT_EQ(glass.Cursor(), true);
  EXPECT_EQ(glass.Blink(), false);
}

TEST(Glass, TheNextCharacterStandsBehindTheLastOne) {
  Glass glass(2, 4);
  EXPECT_EQ(glass.At(), std::nullopt);
  glass.Control(protocol::LcdControl::kClear);
  EXPECT_EQ(glass.At(), (Glass::Place{0, 0}));
  glass.Write(1, 0, "ab");
  EXPECT_EQ(glass.At(), (Glass::Place{0, 3}));
  glass.Write(3, 0, "ab");  // runs on
  EXPECT_EQ(glass.At(), (Glass::Place{1, 1}));
  glass.Write(0, 1, "abcd");
  EXPECT_EQ(glass.At(), std::nullopt);
  glass.Control(protocol::LcdControl::kClear);
  glass.Write(0, 7, "a");  // off the glass
  EXPECT_EQ(glass.At(), std::nullopt);
}

}  // namespace
}  // namespace hub::model
