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
};

}  // namespace

TEST_F(CaeHelp, HelpShowsItsLines) {
  ASSERT_EQ(std::size(kHelpLines), 69U);
  cae.Send("HELP\r\n");
  for (const char* line : kHelpLines) cae.ExpectBytes(std::string(line) + "\r\n\r");
  cae.ExpectBytes(">\r\n\r");
  ExpectAnswer();
}

TEST_F(CaeHelp, IoexamplesShowsItsLines) {
  ASSERT_EQ(std::size(kExampleLines), 22U);
  cae.Send("IOEXAMPLES\r\n");
  for (const char* line : kExampleLines) cae.ExpectBytes(std::string(line) + "\r\n\r");
  cae.ExpectBytes(">\r\n\r");
  ExpectAnswer();
}
