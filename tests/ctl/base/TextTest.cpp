#include "base/Text.h"

#include <gtest/gtest.h>

#include "base/Output.h"

namespace ctl {
namespace {

TEST(Text, WhatCouldSteerATerminalIsAQuestionMark) {
  EXPECT_EQ(Printable("Lamp\033[2J\a\x7F"), "Lamp?[2J??");
  EXPECT_EQ(Printable("a\xC2\x9B"
                      "31m"),
            "a?31m");  // the same as escape and bracket
  EXPECT_EQ(Printable("Küche 21 °C"), "Küche 21 °C");
}

TEST(Text, TheNearestWordIsMeantWhereItIsNear) {
  const std::vector<std::string> words{"Percent", "Port", "Name"};
  EXPECT_EQ(Nearest("Prot", words), "Port");
  EXPECT_EQ(Nearest("port", words), "Port");
  EXPECT_EQ(Nearest("percnet", words), "Percent");
  EXPECT_EQ(Nearest("Colour", words), std::nullopt);
}

TEST(Text, ListsWordsAsPeopleDo) {
  EXPECT_EQ(Listed(std::vector<std::string>{"a"}), "a");
  EXPECT_EQ(Listed(std::vector<std::string>{"a", "b"}), "a or b");
  EXPECT_EQ(Listed(std::vector<std::string>{"a", "b", "c"}, "and"), "a, b and c");
}

TEST(Text, JoinsWordsByBlanks) {
  EXPECT_EQ(Joined({}), "");
  EXPECT_EQ(Joined(std::vector<std::string>{"volume", "up"}), "volume up");
}

TEST(Text, EscapesWhatHasAMeaningInAUrl) {
  EXPECT_EQ(UrlEscape("a/b?c=d e"), "a%2Fb%3Fc%3Dd%20e");
  EXPECT_EQ(UrlEscape("AZaz09-_.~"), "AZaz09-_.~");
  EXPECT_EQ(UrlEscape("\xC3\xBC"), "%C3%BC");
}

TEST(Table, ColumnsLineUpByCharactersNotBytes) {
  Table table;
  table.Add({{"5"}, {"Tür"}, {"on"}});
  table.Add({{"10"}, {""}, {"off"}});
  EXPECT_EQ(table.Text(Paint(false)),
            "5   Tür  on\n"
            "10       off\n");
}

TEST(Table, ColoursDoNotCountAsWidth) {
  Table table;
  table.Add({{"on", Colour::kRed}, {"x"}});
  EXPECT_EQ(table.Text(Paint(true)), "\033[31mon\033[0m  x\n");
}

}  // namespace
}  // namespace ctl
