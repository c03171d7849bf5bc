#include <fcntl.h>
#include <termios.h>
#include <unistd.h>

#include <algorithm>

#include "BusProcess.h"

namespace virtualbus {
namespace {

using Line = BusTest;

TEST_F(Line, AnswersEachFrameWithItsLengthInFront) {
  Start();
  host->SendRaw({0x03, 0x40, 0x6F, 0x9A});
  const Bytes identity = host->Receive(6);
  EXPECT_EQ(std::string(identity.begin() + 1, identity.end()), "Xv1.2");
  host->Receive(identity[0] - 5U);
  host->SendRaw({0x01, 0x30});
  EXPECT_EQ(host->Receive(18), (Bytes{0x11, 0x31, 0x05, 0x00, 0x00, 0x04, 0x06, 0x03, 0x00, 0x00,
                                      0x08, 0x0A, 0x00, 0x00, 0x00, 0x00, 0x09, 0x07}));
  host->SendRaw({0x05, 0x10, 0x05, 0x02, 0xFF, 0xFB});
  EXPECT_EQ(host->Receive(2), (Bytes{0x01, 0x06}));
  host->SendRaw({0x03, 0x20, 0x03, 0x02});
  EXPECT_EQ(host->Receive(5), (Bytes{0x04, 0x21, 0x03, 0x00, 0x00}));
  host->SendRaw({0x05, 0x50, 0x00, 0x01, 0xD3, 0x7F});
  EXPECT_EQ(host->Receive(5), (Bytes{0x04, 0x51, 0x00, 0xD3, 0x7F}));
  host->SendRaw({0x04, 0x50, 0x00, 0x40, 0x2A});
  EXPECT_EQ(host->Receive(5), (Bytes{0x04, 0x51, 0x00, 0x2A, 0x7F}));
  host->SendRaw({0x01, 0x99});
  EXPECT_EQ(host->Receive(2), (Bytes{0x01, 0x4E}));
}

TEST_F(Line, TakesFramesThatComeTogether) {
  Start({"--card", "3=digital-input"});
  host->SendRaw({0x03, 0x20, 0x03, 0x02, 0x00, 0x01, 0x99, 0x03, 0x20, 0x03, 0x02});
  EXPECT_EQ(host->ReceiveReply(), (Bytes{0x21, 0x03, 0x00, 0x00}));
  EXPECT_EQ(host->ReceiveReply(), Bytes{0x4E});
  EXPECT_EQ(host->ReceiveReply(), (Bytes{0x21, 0x03, 0x00, 0x00}));
}

TEST_F(Line, ForgetsAFrameThatIsCutOff) {
  Start({"--card", "3=digital-input"});
  host->SendRaw({0x09, 0x20, 0x03});
  ExpectOutput("# frame cut off: 09 20 03");
  EXPECT_EQ(Ask({0x20, 0x03, 0x02}), (Bytes{0x21, 0x03, 0x00, 0x00}));
}

TEST_F(Line, TheLongestFrameIsAnswered) {
  Start({"--card", "3=digital-input"});
  Bytes polls;
  for (int i = 0; i < 85; ++i) polls.insert(polls.end(), {0x20, 0x03, 0x02});
  EXPECT_EQ(polls.size(), 255U);
  EXPECT_EQ(Ask(polls), (Bytes{0x21, 0x03, 0x00, 0x00}));
}

TEST_F(Line, IsRawFromTheStart) {
  Start();
  const int fd = open(folder.Path("ttyUSB0").c_str(), O_RDWR | O_NOCTTY);
  termios settings{};
  ASSERT_EQ(tcgetattr(fd, &settings), 0);
  close(fd);
  EXPECT_EQ(settings.c_lflag & (ICANON | ECHO | ISIG), 0U);
  EXPECT_EQ(settings.c_iflag & (IXON | ICRNL), 0U);
  EXPECT_EQ(settings.c_oflag & OPOST, 0U);
}

TEST_F(Line, OutlivesAHostThatClosesIt) {
  Start({"--card", "3=digital-input"});
  for (int i = 0; i < 3; ++i) {
    EXPECT_EQ(Ask({0x20, 0x03, 0x02}), (Bytes{0x21, 0x03, 0x00, 0x00}));
    host.reset();
    host = std::make_unique<Host>(folder.Path("ttyUSB0"));
  }
}

TEST_F(Line, GivesEachByteItsTime) {
  Start({"--card", "3=digital-input", "--wire", "300"});
  const auto began = std::chrono::steady_clock::now();
  Ask({0x20, 0x03, 0x02});  // four bytes out, five back, each ten bits of 1/300 s
  const auto took = std::chrono::steady_clock::now() - began;
  EXPECT_GE(took, std::chrono::milliseconds(9 * 33));
}

TEST_F(Line, AnswersWithinAMillisecondWhenItGetsTheProcessor) {
  Start({"--card", "3=digital-input"});
  std::chrono::nanoseconds fastest = kPatience;
  for (int i = 0; i < 500; ++i) {
    const auto began = std::chrono::steady_clock::now();
    Ask({0x20, 0x03, 0x02});
    fastest = std::min(fastest, std::chrono::steady_clock::now() - began);
  }
  EXPECT_LT(fastest, std::chrono::milliseconds(1));
}

}  // namespace
}  // namespace virtualbus
