// The help on the screen, letter by letter: clients compare it.
#include <iterator>

#include "support/HelpText.h"
#include "support/QelmTest.h"

namespace {

class HelpTexts : public CaeTest {
 protected:
  // The entries of the answer without their separators; each line is one, and the prompt
  // closes.
  Texts Screen(const std::string& command) {
    Texts lines = Run(command);
    EXPECT_EQ(lines.back(), ">\r\n");
    lines.pop_back();
    for (std::string& line : lines) {
      EXPECT_TRUE(line.ends_with("\r\n")) << line;
      line.resize(line.size() - 2);
    }
    return lines;
  }
};

}  // namespace

TEST_F(HelpTexts, HelpIsTheWholeScreen) {
  EXPECT_EQ(WithoutNewCommands(Screen("HELP\r\n")),
            Texts(std::begin(kHelpLines), std::end(kHelpLines)));
}

TEST_F(HelpTexts, TheExamplesAreTheWholeScreen) {
  EXPECT_EQ(Screen("IOEXAMPLES\r\n"), Texts(std::begin(kExampleLines), std::end(kExampleLines)));
}
