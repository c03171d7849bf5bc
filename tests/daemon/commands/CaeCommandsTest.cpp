// What the table of the console's commands, HELP and the replies must have in common.
#include "commands/CaeCommands.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <string>

#include "commands/CardRequest.h"

namespace {

bool HasHelpLine(std::string_view word) {
  const std::string start = " - " + std::string(word);
  return std::any_of(CaeHelp().begin(), CaeHelp().end(),
                     [&start](std::string_view line) { return line.starts_with(start); });
}

bool NamesACommand(std::string_view line) {
  return std::any_of(CaeCommands().begin(), CaeCommands().end(), [line](const CaeCommand& row) {
    return line.starts_with(" - " + std::string(row.word));
  });
}

}  // namespace

// Whoever reads it has found HELP already, and VALAMI is no command.
TEST(CaeCommands, EveryOneHasAHelpLine) {
  for (const CaeCommand& row : CaeCommands())
    EXPECT_NE(HasHelpLine(row.word), row.word == "HELP" || row.word == "VALAMI") << row.word;
}

TEST(CaeCommands, EveryHelpLineNamesOne) {
  for (const std::string_view line : CaeHelp())
    EXPECT_EQ(NamesACommand(line), line.starts_with(" - ")) << line;
}

TEST(CaeCommands, NoWordStandsTwice) {
  for (const CaeCommand& row : CaeCommands())
    EXPECT_EQ(std::count_if(CaeCommands().begin(), CaeCommands().end(),
                            [&row](const CaeCommand& other) { return other.word == row.word; }),
              1)
        << row.word;
}

TEST(CaeCommands, AReplyHoldsOnlyPlaceholdersThatExist) {
  for (const char* reply : {"", "CIA: done", "AMV:0x{X}:0x{got}", "{x}{X}{p}{c}{n}{ss}{vv}{got}"})
    EXPECT_TRUE(HasOnlyPlaceholders(reply)) << reply;
  for (const char* reply : {"AMV:0x{X}:0x{gott}", "{}", "{x", "{x}{", "{y}", "{{x}}"})
    EXPECT_FALSE(HasOnlyPlaceholders(reply)) << reply;
}
