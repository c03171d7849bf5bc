// The help on the screen, letter by letter: clients compare it.
#include <iterator>

#include "support/HelpText.h"
#include "support/QelmTest.h"

namespace {

class HelpTexts : public CaeTest {
 protected:
  // Each line is an entry of its own; the prompt closes.
  void ExpectScreen(const std::string& command, Texts lines) {
    lines.emplace_back(">");
    for (std::string& line : lines) line += "\r\n";
    EXPECT_EQ(Run(command), lines);
  }
};

}  // namespace

TEST_F(HelpTexts, HelpHas69Lines) {
  EXPECT_EQ(std::size(kHelpLines), 69U);
  ExpectScreen("HELP\r\n", {std::begin(kHelpLines), std::end(kHelpLines)});
}

TEST_F(HelpTexts, TheExamplesHave22Lines) {
  EXPECT_EQ(std::size(kExampleLines), 22U);
  ExpectScreen("IOEXAMPLES\r\n", {std::begin(kExampleLines), std::end(kExampleLines)});
}
