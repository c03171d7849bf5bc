#include "protocol/Hex.h"

#include <gtest/gtest.h>

#include "protocol/InputReport.h"
#include "protocol/Pace.h"

namespace hub::protocol {
namespace {

TEST(Hex, WritesUpperCase) {
  EXPECT_EQ(HexDigit(14), 'E');
  EXPECT_EQ(HexByte(0x0F), "0F");
  EXPECT_EQ(HexBytes(Bytes{0x43, 0x4F, 0x00}), "434F00");
}

TEST(Hex, ReadsUpperCaseOnly) {
  EXPECT_EQ(ParseHexByte("FB"), 0xFB);
  EXPECT_EQ(ParseHexByte("fb"), std::nullopt);
  EXPECT_EQ(ParseHexByte("F"), std::nullopt);
  EXPECT_EQ(ParseHexByte("FB0"), std::nullopt);
  EXPECT_EQ(ParseHexBytes("434F"), (Bytes{0x43, 0x4F}));
  EXPECT_EQ(ParseHexBytes(""), Bytes{});
  EXPECT_EQ(ParseHexBytes("434"), std::nullopt);
  EXPECT_EQ(ParseHexBytes("4 4F"), std::nullopt);
}

TEST(InputReport, NamesCardBlockAndValue) {
  EXPECT_EQ(ParseInputReport("a3b0d40"), (InputReport{3, 0, 0x40}));
  EXPECT_EQ(ParseInputReport("aFbFdFF"), (InputReport{15, 15, 0xFF}));
}

TEST(InputReport, IsNothingElse) {
  for (const char* line : {"", "a3b0d4", "a3b0d400", "A3b0d40", "a3c0d40", "a3b0e40", "agb0d40",
                           "a3b0dfb", "QELM IO interface is ready"})
    EXPECT_EQ(ParseInputReport(line), std::nullopt) << line;
}

TEST(Pace, APauseIsFiveMillisecondsAtOnePercentAndOneMicrosecondAtAHundred) {
  using std::chrono::microseconds;
  EXPECT_EQ(RoundPause(1), microseconds(5000));
  EXPECT_EQ(RoundPause(100), microseconds(1));
  EXPECT_NEAR(static_cast<double>(RoundPause(50).count()), 2525, 1);
  EXPECT_EQ(RoundPause(0), microseconds(5000));
  EXPECT_EQ(RoundPause(101), microseconds(1));
  EXPECT_EQ(PercentOf(microseconds(5000)), 1);
  EXPECT_EQ(PercentOf(microseconds(2525)), 50);
  EXPECT_EQ(PercentOf(microseconds(1)), 100);
}

TEST(Pace, ARoundGrowsWithWhatIsOnTheLine) {
  EXPECT_GT(RoundTime(RoundPause(100), 16), RoundTime(RoundPause(100), 2));
  EXPECT_EQ(RoundTime(RoundPause(100), 0), RoundTime(RoundPause(100), 1));
}

}  // namespace
}  // namespace hub::protocol
