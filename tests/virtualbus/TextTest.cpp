#include "base/Text.h"

#include <gtest/gtest.h>

namespace virtualbus {
namespace {

using std::chrono::milliseconds;

TEST(Text, BytesAreWrittenAsPairsOfUpperCaseDigits) {
  EXPECT_EQ(Hex(Bytes{0x10, 0x05, 0xFF}), "10 05 FF");
  EXPECT_EQ(Hex(Bytes{}), "");
  EXPECT_EQ(HexDigit(14), "E");
}

TEST(Text, AnAddressIsOneHexadecimalDigit) {
  EXPECT_EQ(ParseAddress("F"), 15);
  EXPECT_EQ(ParseAddress("a"), 10);
  for (const char* bad : {"", "G", "10", "-1", " 1"}) EXPECT_FALSE(ParseAddress(bad)) << bad;
}

TEST(Text, AByteHasOneOrTwoDigits) {
  EXPECT_EQ(ParseByte("7"), 7);
  EXPECT_EQ(ParseByte("fF"), 255);
  for (const char* bad : {"", "100", "0x", "G0", "+1"}) EXPECT_FALSE(ParseByte(bad)) << bad;
}

TEST(Text, BytesStandApart) {
  EXPECT_EQ(ParseBytes(SplitWords(" 10  05\tFF ")), (Bytes{0x10, 0x05, 0xFF}));
  EXPECT_FALSE(ParseBytes(SplitWords("10 XX")));
}

TEST(Text, ADurationNeedsItsUnit) {
  EXPECT_EQ(ParseDuration("500ms"), milliseconds(500));
  EXPECT_EQ(ParseDuration("2s"), milliseconds(2000));
  EXPECT_EQ(ParseDuration("0.5s"), milliseconds(500));
  for (const char* bad : {"", "2", "s", "ms", "-1s", "2m", "1e99s", "nans", "2 s"}) {
    EXPECT_FALSE(ParseDuration(bad)) << bad;
  }
}

TEST(Text, AChanceIsAPercentage) {
  EXPECT_DOUBLE_EQ(*ParseChance("1%"), 0.01);
  EXPECT_DOUBLE_EQ(*ParseChance("0.1%"), 0.001);
  for (const char* bad : {"", "1", "%", "-1%", "101%", "nan%"})
    EXPECT_FALSE(ParseChance(bad)) << bad;
}

TEST(Text, ANumberHasItsLimits) {
  EXPECT_EQ(ParseNumber("+3", -5, 5), 3);
  EXPECT_EQ(ParseNumber("-5", -5, 5), -5);
  for (const char* bad : {"", "6", "-6", "1x", "99999999999999999999"}) {
    EXPECT_FALSE(ParseNumber(bad, -5, 5)) << bad;
  }
}

}  // namespace
}  // namespace virtualbus
