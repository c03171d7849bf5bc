// The two long answers of CAE, byte by byte.
#include <iterator>

#include "../support/HelpText.h"
#include "DaemonTest.h"

namespace {

class CaeHelp : public DaemonTest {
 protected:
  void SetUp() override {
    DaemonTest::SetUp();
    StartDaemon();
    cae = Connect(kCae);
  }

  // The lines up to the prompt.
  std::vector<std::string> Screen() {
    std::string text = cae.ReadUntil("\r\n\r>\r\n\r");
    std::vector<std::string> lines;
    for (auto end = text.find("\r\n\r"); end != text.npos; end = text.find("\r\n\r")) {
      lines.push_back(text.substr(0, end));
      text.erase(0, end + 3);
    }
    EXPECT_EQ(lines.back(), ">");
    lines.pop_back();
    return lines;
  }
};

}  // namespace

TEST_F(CaeHelp, HelpShowsItsLines) {
  cae.Send("HELP\r\n");
  const std::vector<std::string> expected(std::begin(kHelpLines), std::end(kHelpLines));
  EXPECT_EQ(WithoutNewCommands(Screen()), expected);
  ExpectAnswer();
}

TEST_F(CaeHelp, IoexamplesShowsItsLines) {
  cae.Send("IOEXAMPLES\r\n");
  for (const char* line : kExampleLines) cae.ExpectBytes(std::string(line) + "\r\n\r");
  cae.ExpectBytes(">\r\n\r");
  ExpectAnswer();
}
