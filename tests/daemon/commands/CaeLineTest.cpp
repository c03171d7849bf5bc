#include "commands/CaeLine.h"

#include <gtest/gtest.h>

TEST(CaeLine, FindsAddressChannelAndBankBesideTheFirstColon) {
  EXPECT_EQ(AddressText("SETSCB3:2=7F:9"), "2");
  EXPECT_EQ(ChannelText("SETSCB3:2=7F:9"), "3");
  EXPECT_EQ(BankText("SETSCB3:2=7F:9"), "B");
}

TEST(CaeLine, WhatIsNotThereIsEmpty) {
  for (const char* line : {"", "SETSC", "SETSC="}) {
    EXPECT_EQ(AddressText(line), "") << line;
    EXPECT_EQ(ChannelText(line), "") << line;
    EXPECT_EQ(BankText(line), "") << line;
    EXPECT_EQ(ValueText(line, 2), "") << line;
  }
  EXPECT_EQ(AddressText("POLLON:"), "");
  EXPECT_EQ(ChannelText(":2"), "");
  EXPECT_EQ(BankText(":2"), "");
  EXPECT_EQ(BankText("3:2"), "");
  EXPECT_EQ(ChannelText("3:2"), "3");
}

TEST(CaeLine, TheValueStandsBehindTheFirstEquals) {
  EXPECT_EQ(ValueText("X:1=7F=8", 2), "7F");
  EXPECT_EQ(ValueText("X:1=7", 2), "7");
  EXPECT_EQ(ValueText("X:1=7F", 1), "7");
}

TEST(CaeLine, TheSpeedEndsAtTheSeparator) {
  EXPECT_EQ(SpeedText("SPEED=50\r\n", "\r\n"), "50");
  EXPECT_EQ(SpeedText("SPEED=50\nx", "\r\n"), "50");
  EXPECT_EQ(SpeedText("SPEED=50", "\r\n"), "50");
  EXPECT_EQ(SpeedText("SPEED=\r\n", "\r\n"), "");
  EXPECT_EQ(SpeedText("a=7;SPEED=50;", ";"), "7");
  EXPECT_EQ(SpeedText("SPEED=50x", ""), "50x");
}

TEST(CaeLine, DigitsThatAreNoneAreZero) {
  EXPECT_EQ(Digit("F"), 15);
  EXPECT_EQ(Digit("g"), 0);
  EXPECT_EQ(Digit("a"), 0);
  EXPECT_EQ(Digit(""), 0);
  EXPECT_EQ(TwoDigits("7F"), 0x7F);
  EXPECT_EQ(TwoDigits("3Z"), 0x30);
  EXPECT_EQ(TwoDigits("Z3"), 0x03);
  EXPECT_EQ(TwoDigits("3"), 0x30);
  EXPECT_EQ(TwoDigits(""), 0x00);
}
