// The commands of the LCD and the infrared card.
#include "support/LastLine.h"
#include "support/QelmTest.h"

namespace {

class IoStream : public QelmTest {
 protected:
  IoStream() {
    PlugCard(9, 0x0A);
    PlugCard(14, 0x09);
    PlugCard(5, 0x03);
  }

  void Send(const std::string& command) { EXPECT_TRUE(qelm.ParseOutCommand(List(command + ";"))); }

  void ExpectFrame(std::size_t address, const std::string& command, const QList& payload) {
    Send(command);
    EXPECT_EQ(TakeAll(CardQueue(address)), std::vector<QList>{payload}) << command;
    EXPECT_EQ(CaeReplies(), Texts()) << command;
  }

  void ExpectIllegal(const std::string& command) {
    Send(command);
    EXPECT_EQ(CaeReplies(), (Texts{"COE:Illegal command -> " + command + "\r\n", ">\r\n"}));
    for (std::size_t i = 0; i < 17; ++i) EXPECT_TRUE(CardQueue(i).IsEmpty()) << command;
  }
};

using IoStreamDeathTest = IoStream;

std::string Pairs(std::size_t count) {
  std::string pairs;
  for (std::size_t i = 0; i < count; ++i) pairs += "41";
  return pairs;
}

}  // namespace

TEST_F(IoStream, InfraredBytesGoOutWithTheirCount) {
  ExpectFrame(9, "a9sHS41", List({0x10, 0x09, 0x02, 0x01, 0x41}));
  ExpectFrame(9, "a9sHS434F434B524F414348",
              List({0x10, 0x09, 0x0A, 0x09, 'C', 'O', 'C', 'K', 'R', 'O', 'A', 'C', 'H'}));
}

TEST_F(IoStream, AnOddInfraredDigitIsIgnored) {
  ExpectFrame(9, "a9sHS414", List({0x10, 0x09, 0x02, 0x01, 0x41}));
  ExpectFrame(9, "a9sHS4", List({0x10, 0x09, 0x01, 0x00}));
  ExpectFrame(9, "a9sHS", List({0x10, 0x09, 0x01, 0x00}));
}

TEST_F(IoStream, InfraredDigitsThatAreNoneReadAsZero) {
  ExpectFrame(9, "a9sHSf1Z2", List({0x10, 0x09, 0x03, 0x02, 0x01, 0x02}));
}

TEST_F(IoStream, AnInfraredFrameHolds35Bytes) {
  QList payload = List({0x10, 0x09, 0x24, 0x23});
  payload.insert(payload.end(), 35, 'A');
  ExpectFrame(9, "a9sHS" + Pairs(35), payload);
  ExpectFrame(9, "a9sHS" + Pairs(35) + "4", payload);
  ExpectIllegal("a9sHS" + Pairs(36));
  ExpectIllegal("a9sHS" + Pairs(100));
}

TEST_F(IoStream, MoreThanTheHelpNamesIsSentAsItIs) {
  QList payload = List({0x10, 0x09, 0x19, 0x18});
  payload.insert(payload.end(), 24, 'A');
  ExpectFrame(9, "a9sHS" + Pairs(24), payload);
}

TEST_F(IoStream, AnInfraredStreamElsewhereIsIllegal) {
  for (const char* command : {"aEsHS41", "a5sHS41", "a0sHS41", "agsHS41"}) ExpectIllegal(command);
}

TEST_F(IoStream, AnInfraredStreamWithoutItsMarkIsIllegal) {
  for (const char* command : {"a9s", "a9sH", "a9sXX41", "a9sXHS41", "a9s41HS", "HSa9s"})
    ExpectIllegal(command);
}

TEST_F(IoStream, LcdControlsAreOneCodeByte) {
  ExpectFrame(14, "aElCL", List({0x10, 0x0E, 0x01, 0x00}));
  ExpectFrame(14, "aElLO", List({0x10, 0x0E, 0x01, 0x01}));
  ExpectFrame(14, "aElLF", List({0x10, 0x0E, 0x01, 0x02}));
  ExpectFrame(14, "aElCO", List({0x10, 0x0E, 0x01, 0x03}));
  ExpectFrame(14, "aElCF", List({0x10, 0x0E, 0x01, 0x04}));
  ExpectFrame(14, "aElBO", List({0x10, 0x0E, 0x01, 0x05}));
  ExpectFrame(14, "aElBF", List({0x10, 0x0E, 0x01, 0x06}));
}

TEST_F(IoStream, OnlyTheTwoCharactersOfALcdControlCount) {
  ExpectFrame(14, "aElCLmore", List({0x10, 0x0E, 0x01, 0x00}));
}

TEST_F(IoStream, AnUnknownLcdControlIsIllegal) {
  for (const char* command : {"aElXX", "aElcl", "aEl", "aElC", "aElPA", "aElPAP0301tx"})
    ExpectIllegal(command);
}

TEST_F(IoStream, AnLcdStreamElsewhereIsIllegal) {
  for (const char* command : {"a9lCL", "a5lCL", "a0lCL", "a9lPAp0301tx", "a5lPAp0301tx"})
    ExpectIllegal(command);
}

TEST_F(IoStream, LcdTextGoesOutWithPositionAndAZeroByte) {
  QList payload = List({0x10, 0x0E, 0x13, 0x09, 0x03, 0x01});
  for (const char c : std::string("Tail of the cat")) payload.push_back(c);
  payload.push_back(0);
  ExpectFrame(14, "aElPAp0301tTail of the cat", payload);
}

TEST_F(IoStream, LcdTextMayBeEmptyOrAbsent) {
  const QList payload = List({0x10, 0x0E, 0x04, 0x09, 0x00, 0x00, 0x00});
  for (const char* command : {"aElPAp0000t", "aElPAp0000", "aElPAp0", "aElPAp"})
    ExpectFrame(14, command, payload);
}

TEST_F(IoStream, ALcdPositionOfOneDigitIsTheLowDigit) {
  ExpectFrame(14, "aElPAp1", List({0x10, 0x0E, 0x04, 0x09, 0x01, 0x00, 0x00}));
  ExpectFrame(14, "aElPAp1F", List({0x10, 0x0E, 0x04, 0x09, 0x1F, 0x00, 0x00}));
  ExpectFrame(14, "aElPAp1F2", List({0x10, 0x0E, 0x04, 0x09, 0x1F, 0x02, 0x00}));
}

TEST_F(IoStream, TheMarkInFrontOfTheTextIsNotChecked) {
  ExpectFrame(14, "aElPAp0301!A", List({0x10, 0x0E, 0x05, 0x09, 0x03, 0x01, 'A', 0x00}));
}

TEST_F(IoStream, TheTextMarkCountsWhereverItStands) {
  ExpectFrame(14, "aElxxx0301tPAp",
              List({0x10, 0x0E, 0x07, 0x09, 0x03, 0x01, 'P', 'A', 'p', 0x00}));
}

TEST_F(IoStream, LcdTextHolds34Characters) {
  QList payload = List({0x10, 0x0E, 0x26, 0x09, 0x00, 0x00});
  payload.insert(payload.end(), 34, 'x');
  payload.push_back(0);
  ExpectFrame(14, "aElPAp0000t" + std::string(34, 'x'), payload);
}

TEST_F(IoStreamDeathTest, LcdTextOf35CharactersEndsTheProcessWhateverTheCard) {
  for (const char* address : {"E", "5", "0"})
    EXPECT_EXIT(Send("a" + std::string(address) + "lPAp0000t" + std::string(35, 'x')),
                testing::KilledBySignal(SIGABRT), LastLine("34 characters"))
        << address;
}
