#include "runtime/Values.h"

#include <gtest/gtest.h>

#include <climits>

#include "support/LastLine.h"

TEST(Values, ReadsUpperCaseHexDigits) {
  EXPECT_EQ(HexCharToByte('0'), 0);
  EXPECT_EQ(HexCharToByte('9'), 9);
  EXPECT_EQ(HexCharToByte('A'), 10);
  EXPECT_EQ(HexCharToByte('F'), 15);
}

TEST(Values, ReadsEveryOtherCharacterAsZero) {
  for (const char c : {'a', 'f', 'G', '/', ':', '@', ' ', '\0', '\xFF'})
    EXPECT_EQ(HexCharToByte(c), 0) << c;
}

TEST(Values, PutsTheHighDigitFirst) {
  EXPECT_EQ(HexNum2Byte('F', 'F'), 255);
  EXPECT_EQ(HexNum2Byte('f', 'f'), 0);
  EXPECT_EQ(HexNum2Byte('G', '1'), 1);
  EXPECT_EQ(HexNum2Byte('1', 'G'), 16);
}

TEST(Values, ReadsOneOrTwoHexDigitsOfAText) {
  EXPECT_EQ(Convert_HexStr2Byte("7"), 7);
  EXPECT_EQ(Convert_HexStr2Byte("7A"), 0x7A);
  EXPECT_EQ(Convert_HexStr2Byte("7A9"), 0x7A);
  EXPECT_EQ(Convert_HexStr2Byte("7A99"), 0x7A);
  EXPECT_EQ(Convert_HexStr2Byte(""), 0);
}

TEST(ValuesDeathTest, FiveHexDigitsEndTheProcess) {
  EXPECT_EXIT(Convert_HexStr2Byte("7A999"), testing::KilledBySignal(SIGABRT),
              LastLine("4 characters"));
}

TEST(Values, ReadsDecimalNumbersUpToTheFirstOtherCharacter) {
  EXPECT_EQ(ATOL(" 12x"), 12);
  EXPECT_EQ(ATOL("-5"), -5);
  EXPECT_EQ(ATOL("+7"), 7);
  EXPECT_EQ(ATOL("007"), 7);
  EXPECT_EQ(ATOL("\t 3 4"), 3);
  EXPECT_EQ(ATOL("abc"), 0);
  EXPECT_EQ(ATOL(""), 0);
  EXPECT_EQ(ATOL("0x10"), 0);
}

TEST(Values, NumbersOutsideTheRangeStopAtItsEnds) {
  EXPECT_EQ(ATOL("99999999999999999999999"), LONG_MAX);
  EXPECT_EQ(ATOL("-99999999999999999999999"), LONG_MIN);
  EXPECT_EQ(ATOI("99999999999999999999999"), 2147483647);
  EXPECT_EQ(ATOI("-4294967297"), -2147483647 - 1);
  EXPECT_EQ(ATOI("2147483647"), 2147483647);
  EXPECT_EQ(ATOI("1025"), 1025);
}

TEST(Values, ThreeSpellingsAreTrue) {
  for (const char* text : {"True", "true", "TRUE"}) EXPECT_TRUE(ATOB(text)) << text;
  for (const char* text : {"yes", "Yes", "1", "tRUE", "TRUE ", " TRUE", "FALSE", ""})
    EXPECT_FALSE(ATOB(text)) << text;
}

TEST(Values, WritesBooleansInUpperCaseAndReadsThemBack) {
  EXPECT_EQ(BTOA(true), "TRUE");
  EXPECT_EQ(BTOA(false), "FALSE");
  EXPECT_TRUE(ATOB(BTOA(true)));
  EXPECT_FALSE(ATOB(BTOA(false)));
}

TEST(Values, WritesDecimalNumbersWithoutPadding) {
  EXPECT_EQ(ITOA(0), "0");
  EXPECT_EQ(ITOA(-12), "-12");
  EXPECT_EQ(ITOA(34835), "34835");
  EXPECT_EQ(ITOA(INT_MIN), "-2147483648");
}
