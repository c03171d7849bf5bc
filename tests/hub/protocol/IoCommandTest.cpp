#include "protocol/IoCommand.h"

#include <gtest/gtest.h>

namespace hub::protocol {
namespace {

TEST(IoCommand, ABlockIsWrittenAsTheDaemonReadsIt) {
  EXPECT_EQ(Format(WriteBlock{5, 1, 0xFB}), "a5b1dFB");
  EXPECT_EQ(Format(WriteBlock{15, 0, 0}), "aFb0d00");
}

TEST(IoCommand, ATextNamesItsColumnFirst) {
  EXPECT_EQ(Format(WriteText{14, 3, 1, "Tail of the cat"}), "aElPAp0301tTail of the cat");
}

TEST(IoCommand, EveryControlHasItsWord) {
  EXPECT_EQ(Format(ControlLcd{14, LcdControl::kClear}), "aElCL");
  EXPECT_EQ(Format(ControlLcd{14, LcdControl::kLightOn}), "aElLO");
  EXPECT_EQ(Format(ControlLcd{14, LcdControl::kLightOff}), "aElLF");
  EXPECT_EQ(Format(ControlLcd{14, LcdControl::kCursorOn}), "aElCO");
  EXPECT_EQ(Format(ControlLcd{14, LcdControl::kCursorOff}), "aElCF");
  EXPECT_EQ(Format(ControlLcd{14, LcdControl::kBlinkOn}), "aElBO");
  EXPECT_EQ(Format(ControlLcd{14, LcdControl::kBlinkOff}), "aElBF");
}

TEST(IoCommand, ACodeIsHexadecimal) {
  EXPECT_EQ(Format(SendInfrared{9, {0x43, 0x4F, 0x0A}}), "a9sHS434F0A");
}

struct Reading {
  const char* line;
  IoCommand command;
};

void PrintTo(const Reading& reading, std::ostream* out) { *out << reading.line; }

class ReadAsTheDaemonDoes : public testing::TestWithParam<Reading> {};

TEST_P(ReadAsTheDaemonDoes, IsThisCommand) {
  EXPECT_EQ(ParseIoCommand(GetParam().line), GetParam().command);
}

INSTANTIATE_TEST_SUITE_P(
    Lines, ReadAsTheDaemonDoes,
    testing::Values(Reading{"a5b1dFB", WriteBlock{5, 1, 0xFB}},
                    Reading{"a5b1dFBtail", WriteBlock{5, 1, 0xFB}},
                    Reading{"a5b1dF", WriteBlock{5, 1, 0x0F}},  // the low digit alone
                    Reading{"a5b1d", WriteBlock{5, 1, 0}},      // nothing is 0
                    Reading{"axb1dfb", WriteBlock{0, 1, 0}},    // lower case is 0
                    Reading{"aElPAp0301tTail", WriteText{14, 3, 1, "Tail"}},
                    Reading{"aElPAp0301t", WriteText{14, 3, 1, ""}},
                    Reading{"aElPAp3", WriteText{14, 3, 0, ""}},
                    Reading{"aElXXPAp", WriteText{14, 0xA0, 0, ""}},  // wherever the word stands
                    Reading{"aElCL", ControlLcd{14, LcdControl::kClear}},
                    Reading{"aElBFmore", ControlLcd{14, LcdControl::kBlinkOff}},
                    Reading{"a9sHS434F4", SendInfrared{9, {0x43, 0x4F}}},  // a digit left over
                    Reading{"a9sHS", SendInfrared{9, {}}}));

class IsIllegal : public testing::TestWithParam<const char*> {};

TEST_P(IsIllegal, WhateverCardIsThere) { EXPECT_EQ(ParseIoCommand(GetParam()), std::nullopt); }

INSTANTIATE_TEST_SUITE_P(Lines, IsIllegal,
                         testing::Values("", "a", "a5", "A5b1dFB", "x5b1dFB", "a5x1", "a5b1FB",
                                         "a5b1", "aElXX", "aEl", "a9sXHS00", "a9s", " a5b1dFB"));

TEST(IoPieces, ALongTextGoesInPiecesThatTheDaemonSurvives) {
  const WriteText text{0xE, 2, 1, std::string(34, 'a') + std::string(34, 'b') + "c"};
  EXPECT_EQ(Pieces(text), (std::vector<IoCommand>{WriteText{0xE, 2, 1, std::string(34, 'a')},
                                                  WriteText{0xE, 36, 1, std::string(34, 'b')},
                                                  WriteText{0xE, 70, 1, "c"}}));
  EXPECT_EQ(Pieces(WriteText{0xE, 0, 0, ""}).size(), 1U);
}

TEST(IoPieces, ATextThatRunsPastTheLastColumnEndsThere) {
  const WriteText text{0xE, 250, 1, std::string(34, 'a') + "b"};
  EXPECT_EQ(Pieces(text), (std::vector<IoCommand>{WriteText{0xE, 250, 1, std::string(34, 'a')}}));
}

TEST(IoPieces, NothingThatWouldBeAnotherCommandGoesOut) {
  for (const char* text : {"a\rb", "a\nb"}) EXPECT_TRUE(Pieces(WriteText{0xE, 0, 0, text}).empty());
  EXPECT_TRUE(Pieces(WriteText{0xE, 0, 0, std::string(1, '\0')}).empty());
  EXPECT_EQ(Pieces(SendInfrared{9, Bytes(35, 0x43)}).size(), 1U);
  EXPECT_TRUE(Pieces(SendInfrared{9, Bytes(36, 0x43)}).empty());
}

}  // namespace
}  // namespace hub::protocol
