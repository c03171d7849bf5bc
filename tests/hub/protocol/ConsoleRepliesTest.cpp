#include "protocol/ConsoleReplies.h"

#include <gtest/gtest.h>

namespace hub::protocol {
namespace {

Lines Table(const char* title) {
  Lines lines{title};
  for (const char digit : std::string("0123456789ABCDEF"))
    lines.push_back(std::string("DTI:0x") + digit + ":EMPTY");
  lines[6] = "DTI:0x5:16 channel DIGITAL OUTPUT";
  lines[16] = "DTI:0xF:CARD?";
  return lines;
}

TEST(ConsoleReplies, TheVersionStandsBehindItsWords) {
  EXPECT_EQ(ParseVersion({"CIA: DRIVER VERSION 1.20"}), "1.20");
  EXPECT_EQ(ParseVersion({"CIE: UNKNOWN COMMAND "}), std::nullopt);
  EXPECT_EQ(ParseVersion({}), std::nullopt);
}

TEST(ConsoleReplies, BothTablesNameSixteenCards) {
  for (const char* title : {"DISCOVER LIST:", "FORCED DISCOVER LIST:"}) {
    const auto names = ParseCardTable(Table(title));
    ASSERT_TRUE(names) << title;
    EXPECT_EQ((*names)[5], "16 channel DIGITAL OUTPUT");
    EXPECT_EQ((*names)[15], "CARD?");
    EXPECT_EQ((*names)[0], "EMPTY");
  }
}

TEST(ConsoleReplies, ATableThatIsNotWholeIsNone) {
  Lines lines = Table("DISCOVER LIST:");
  lines.pop_back();
  EXPECT_EQ(ParseCardTable(lines), std::nullopt);
  EXPECT_EQ(ParseCardTable({"DTI:0x", "DTI:0xG:EMPTY", "DTI:"}), std::nullopt);
}

TEST(ConsoleReplies, PollingIsToldForTheBusAndForEachInputCard) {
  const auto polling =
      ParsePolling({"CIA: GLOBAL POLLING IS ENABLED", "PTI:0x3:ON", "PTI:0xF:OFF"});
  ASSERT_TRUE(polling);
  EXPECT_TRUE(polling->all);
  EXPECT_EQ(polling->cards[3], true);
  EXPECT_EQ(polling->cards[15], false);
  EXPECT_EQ(polling->cards[5], std::nullopt);
  EXPECT_FALSE(ParsePolling({"CIA: GLOBAL POLLING IS DISABLED"})->all);
  EXPECT_FALSE(ParsePolling({"PTI:0x3:ON"}));
}

TEST(ConsoleReplies, AnErrorLosesItsMark) {
  EXPECT_EQ(ParseError({"CIE: MASK READ ERROR"}), "MASK READ ERROR");
  EXPECT_EQ(ParseError({"CIA: fine"}), std::nullopt);
}

TEST(ConsoleReplies, AValueIsTheLastByteOfTheLastLine) {
  EXPECT_EQ(ParseCardValue({"CIA: MASK is GOT from card", "AMV:0xF:0x2A"}), 0x2A);
  EXPECT_EQ(ParseCardValue({"CIA: MSR value is GOT from card", "MSR0:0x4:0x05"}), 0x05);
  EXPECT_EQ(ParseCardValue({"CIE: MASK READ ERROR"}), std::nullopt);
  EXPECT_EQ(ParseCardValue({"RBT:0x3:OK"}), std::nullopt);
  EXPECT_EQ(ParseCardValue({}), std::nullopt);
}

TEST(ConsoleReplies, SayWhatALineHasChanged) {
  EXPECT_EQ(ParsePace({"CIA: SPEED IS SET to 50%"}), 50);
  EXPECT_EQ(ParsePace({"CIA: Parameter is out of range (1..100)"}), std::nullopt);
  EXPECT_EQ(ParsePace({"CIA: SPEED IS SET to 0%"}), std::nullopt);
  EXPECT_EQ(ParsePace({"CIA: SPEED IS SET to 101%"}), std::nullopt);
  EXPECT_EQ(ParseReboots({"CIA: Card is REBOOTED", "RBT:0xA:OK"}), (std::vector<uint8_t>{0xA}));
  EXPECT_TRUE(ParseReboots({"CIE: BUS WRITE ERROR"}).empty());
  for (const char* line : {"CIA: GLOBAL POLLING IS DISABLED", "CIA: POLLON is OK at address 3",
                           "CIA: POLLOFF is OK at address 3"})
    EXPECT_TRUE(SaysPolling({line})) << line;
  EXPECT_FALSE(SaysPolling({"CIE: THIS COMMAND IS VALID ON INPUT CARDS"}));
  EXPECT_TRUE(SaysForcedDiscovery({"FORCED DISCOVER LIST:", "DTI:0x0:EMPTY"}));
  EXPECT_FALSE(SaysForcedDiscovery({"DISCOVER LIST:", "DTI:0x0:EMPTY"}));
}

}  // namespace
}  // namespace hub::protocol
