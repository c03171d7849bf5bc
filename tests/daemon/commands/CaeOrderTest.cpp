// Which tests a line fires, in which order, and how the line is closed.
#include "support/QelmTest.h"

namespace {

class CaeOrder : public CaeTest {
 protected:
  // Words that a line may merely contain, the last of the table first.
  const std::string kEveryWord =
      "GETLASTINPST:2 POLLOFF: POLLON: STOREMSRS GETMSR SETMSR GETSC SETSC MOVESTRPOS: "
      "STORESRVPOS: STOREANMASK: GETANMASK: SETANMASK: REBOOT: LCDINITLIGHT: LCDSELFTEST: "
      "SPEED=50\r\n";

  void ExpectTranscript(const std::string& line, int answers, Texts transcript) {
    for (std::string& text : transcript) text += "\r\n";
    EXPECT_EQ(
        Run(line, std::vector<QList>(static_cast<std::size_t>(answers), List({'Q', 2, 0, 0x5A}))),
        transcript);
  }
};

constexpr const char* kLcdOnly = "CIE: THIS COMMAND IS VALID FOR LCD CONTROL CARD ONLY";
constexpr const char* kAnalogueOnly = "CIE: THIS COMMAND IS VALID ON ANALOG INPUT CARD ONLY";
constexpr const char* kServoOnly = "CIE: THIS COMMAND IS VALID ON SERVO CONTROLLER CARD ONLY";
constexpr const char* kServoLegal = "CIE: THIS COMMAND IS LEGAL ON SERVO CONTROLLER CARD ONLY";
constexpr const char* kMotorOnly = "CIE: THIS COMMAND IS VALID ON DC MOTOR CONTROLLER CARD ONLY";
constexpr const char* kInputOnly = "CIE: THIS COMMAND IS VALID ON INPUT CARDS";
constexpr const char* kStateOnly =
    "CIE: THIS COMMAND IS VALID ON ANALOG OR DIGITAL INPUT CARD ONLY";
constexpr const char* kSpeed = "CIA: SPEED IS SET to 50%";
constexpr const char* kRebooted = "CIA: Card is REBOOTED";

}  // namespace

TEST_F(CaeOrder, OnAnLcdCard) {
  PlugCard(2, 0x09);
  ExpectTranscript(
      kEveryWord, 3,
      {kSpeed, "CIA: SELFTEST STATE IS SET TO 50 at address 2",
       "CIA: INITLIGHT STATE IS SET TO 50 at address 2", kRebooted, "RBT:0x2:OK", kAnalogueOnly,
       kAnalogueOnly, kAnalogueOnly, kServoOnly, kServoLegal, kServoOnly, kServoOnly, kMotorOnly,
       kMotorOnly, kMotorOnly, kInputOnly, kInputOnly, kStateOnly, ">"});
  EXPECT_EQ(requests,
            (std::vector<QList>{List({0x50, 2, 0x01, 0x01, 0x00}),
                                List({0x50, 2, 0x01, 0x02, 0x00}), List({0x50, 2, 0x01, 0xAB})}));
}

TEST_F(CaeOrder, OnAnAnalogueInputCard) {
  PlugCard(2, 0x07);
  ExpectTranscript(kEveryWord, 4,
                   {kSpeed,
                    kLcdOnly,
                    kLcdOnly,
                    kRebooted,
                    "RBT:0x2:OK",
                    "CIA: Channel MASK of the card is SET",
                    "AMS:0x2:0x50",
                    "CIA: MASK is GOT from card",
                    "AMV:0x2:0x5A",
                    "CIA: MASK IS STORED at address 2",
                    kServoOnly,
                    kServoLegal,
                    kServoOnly,
                    kServoOnly,
                    kMotorOnly,
                    kMotorOnly,
                    kMotorOnly,
                    "CIA: POLLON is OK at address 2",
                    "CIA: POLLOFF is OK at address 2",
                    "CIA: LAST INPUT STATE SENT ON IO INTERFACE",
                    ">"});
  EXPECT_EQ(requests,
            (std::vector<QList>{List({0x50, 2, 0x01, 0xAB}), List({0x50, 2, 0x01, 0x01, 0x50}),
                                List({0x50, 2, 0x40, 0x01}), List({0x50, 2, 0x01, 0x02})}));
  EXPECT_EQ(TakeTexts(*qelm.SerialQueue), Texts{"a2b5d00"});
}

TEST_F(CaeOrder, OnAServoCard) {
  PlugCard(2, 0x05);
  ExpectTranscript(kEveryWord, 5,
                   {kSpeed,
                    kLcdOnly,
                    kLcdOnly,
                    kRebooted,
                    "RBT:0x2:OK",
                    kAnalogueOnly,
                    kAnalogueOnly,
                    kAnalogueOnly,
                    "CIA: POSITIONS ARE STORED at address 2",
                    "CIA: SERVOS ARE MOVED TO STORED POSITIONS at address 2",
                    "CIA: SERVO PARAM of the card is SET",
                    "SPS:0x2:SCST:0x50",
                    "CIA: SERVO PARAM is GOT from card",
                    "SPG:0x2:SCST:0x5A",
                    kMotorOnly,
                    kMotorOnly,
                    kMotorOnly,
                    kInputOnly,
                    kInputOnly,
                    kStateOnly,
                    ">"});
  EXPECT_EQ(requests,
            (std::vector<QList>{List({0x50, 2, 0x01, 0xAB}), List({0x50, 2, 0x01, 0x74}),
                                List({0x50, 2, 0x01, 0x3F}), List({0x50, 2, 0x01, 0xC0, 0x50}),
                                List({0x50, 2, 0x40, 0x21})}));
}

TEST_F(CaeOrder, OnAMotorCard) {
  PlugCard(2, 0x06);
  ExpectTranscript(kEveryWord, 4,
                   {kSpeed,
                    kLcdOnly,
                    kLcdOnly,
                    kRebooted,
                    "RBT:0x2:OK",
                    kAnalogueOnly,
                    kAnalogueOnly,
                    kAnalogueOnly,
                    kServoOnly,
                    kServoLegal,
                    kServoOnly,
                    kServoOnly,
                    "CIA: MSR value of the card is SET",
                    "MPS:0x2:MSRT:0x50",
                    "CIA: MSR value is GOT from card",
                    "MSR0:0x2:0x5A",
                    "CIA: MSR values are STORED at address 2",
                    kInputOnly,
                    kInputOnly,
                    kStateOnly,
                    ">"});
  EXPECT_EQ(requests,
            (std::vector<QList>{List({0x50, 2, 0x01, 0xAB}), List({0x50, 2, 0x01, 0xC0, 0x50}),
                                List({0x50, 2, 0x40, 0x01}), List({0x50, 2, 0x01, 0xCD})}));
}

TEST_F(CaeOrder, TwoCommandsInOneLineEndInOnePrompt) {
  PlugCard(3, 0x04);
  qelm.Cards[3].PollEnabled = 0;
  EXPECT_EQ(Run("REBOOT:3 POLLON:3\r\n", {List({'Q', 3})}),
            (Texts{"CIA: Card is REBOOTED\r\n", "RBT:0x3:OK\r\n",
                   "CIA: POLLON is OK at address 3\r\n", ">\r\n"}));
  EXPECT_EQ(qelm.Cards[3].PollEnabled, 1);
}

TEST_F(CaeOrder, UnknownLinesGetTheErrorAndThePromptInOne) {
  for (const char* line : {"\r\n", "", "help\r\n", "HELP \r\n", " HELP\r\n", "HELP", "HELP\n",
                           "HELP\r\n\r\n", "VALAMI\r\n", "DRVVER\r\nDRVVER\r\n", "exit\r\n",
                           "speed=50\r\n", "SPEED 50\r\n", "POLLON 3\r\n", "Discover\r\n"})
    EXPECT_EQ(Run(line), Texts{"CIE: UNKNOWN COMMAND \r\n>\r\n"}) << line;
}

TEST_F(CaeOrder, AContainedWordNeedsTheSeparatorAnywhereInTheLine) {
  PlugCard(3, 0x04);
  EXPECT_EQ(Run("POLLON:3"), Texts{"CIE: UNKNOWN COMMAND \r\n>\r\n"});
  EXPECT_EQ(Run("POLLON:3\n"), Texts{"CIE: UNKNOWN COMMAND \r\n>\r\n"});
  EXPECT_EQ(Run("\r\nplease POLLON:3 now"), (Texts{"CIA: POLLON is OK at address 3\r\n", ">\r\n"}));
}

TEST_F(CaeOrder, TheSeparatorsAreTheConfiguredOnes) {
  qelm.Config.CaeDescriptor.InpSeparator = ";";
  qelm.Config.CaeDescriptor.OutSeparator = "|";
  EXPECT_EQ(Run("DRVVER;"), (Texts{"CIA: DRIVER VERSION 1.20|", ">|"}));
  EXPECT_EQ(Run("DRVVER\r\n"), Texts{"CIE: UNKNOWN COMMAND |>|"});
  EXPECT_EQ(Run("SPEED=50;1"), (Texts{"CIA: SPEED IS SET to 50%|", ">|"}));
}
