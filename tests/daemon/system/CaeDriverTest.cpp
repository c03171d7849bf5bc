// CAE commands that act on the daemon and on the bus as a whole.
#include "DaemonTest.h"

namespace {

class CaeDriver : public DaemonTest {
 protected:
  void StartWithoutBus() {
    StartDaemon();
    cae = Connect(kCae);
  }

  void ExpectUnknown(const std::string& line, Place place = Place::current()) {
    cae.Send(line, place);
    cae.ExpectBytes("CIE: UNKNOWN COMMAND \r\n>\r\n\r", place);
  }
};

constexpr char kSent[] = "CIA: LAST INPUT STATE SENT ON IO INTERFACE\r\n\r";
constexpr char kInputsOnly[] = "CIE: THIS COMMAND IS VALID ON INPUT CARDS\r\n\r";
constexpr char kBadBlock[] = "CIE: INVALID BLOCK NUMBER\r\n\r";
constexpr char kBadInput[] =
    "CIE: THIS COMMAND IS VALID ON ANALOG OR DIGITAL INPUT CARD ONLY\r\n\r";
constexpr char kOutOfRange[] = "CIE: Parameter is out of range (1..100)\r\n\r";
constexpr char kDisabled[] = "CIA: GLOBAL POLLING IS DISABLED\r\n\r";
constexpr char kEnabled[] = "CIA: GLOBAL POLLING IS ENABLED\r\n\r";

}  // namespace

TEST_F(CaeDriver, DriverVersion) {
  StartWithoutBus();
  Command("DRVVER", "CIA: DRIVER VERSION 1.20\r\n\r");
}

TEST_F(CaeDriver, UnknownLinesGetReplyAndPromptInOneItem) {
  StartWithoutBus();
  ExpectUnknown("\r\n");
  ExpectUnknown("help\r\n");
  ExpectUnknown("HELP \r\n");
  ExpectUnknown(" HELP\r\n");
  ExpectUnknown("HELP\n");
  ExpectUnknown("HELP");
  ExpectUnknown("VALAMI\r\n");
  ExpectUnknown("POLLON:3");
  ExpectUnknown("pollon:3\r\n");
}

TEST_F(CaeDriver, SpeedIsSetAndEchoedAsTyped) {
  StartWithoutBus();
  Command("SPEED=100", "CIA: SPEED IS SET to 100%\r\n\r");
  Command("SPEED=1", "CIA: SPEED IS SET to 1%\r\n\r");
  Command("SPEED=007", "CIA: SPEED IS SET to 007%\r\n\r");
  Command("SPEED= 50", "CIA: SPEED IS SET to  50%\r\n\r");
  Command("set SPEED=99 please", "CIA: SPEED IS SET to 99 please%\r\n\r");
}

TEST_F(CaeDriver, SpeedOutOfRangeIsRefused) {
  StartWithoutBus();
  Command("SPEED=0", kOutOfRange);
  Command("SPEED=101", kOutOfRange);
  Command("SPEED=-5", kOutOfRange);
  Command("SPEED=", kOutOfRange);
  Command("SPEED=fast", kOutOfRange);
  Command("SPEED=4294967346", kOutOfRange);
  Command("SPEED=99999999999999999999", kOutOfRange);
}

TEST_F(CaeDriver, SpeedNeedsNoLineEnd) {
  StartWithoutBus();
  cae.Send("SPEED=50");
  cae.ExpectBytes("CIA: SPEED IS SET to 50%\r\n\r>\r\n\r");
  cae.Send("SPEED=80\n");
  cae.ExpectBytes("CIA: SPEED IS SET to 80%\r\n\r>\r\n\r");
}

TEST_F(CaeDriver, SpeedReachesTheSocketThreads) {
  WriteConfig({.percent = "100"});
  StartWithoutBus();
  Command("SPEED=1", "CIA: SPEED IS SET to 1%\r\n\r");
  const auto begin = std::chrono::steady_clock::now();
  cae.Send("IOEXAMPLES\r\n");
  cae.ReadUntil(">\r\n\r");
  // 23 items, one a pass of 5 ms
  EXPECT_GE(std::chrono::steady_clock::now() - begin, std::chrono::milliseconds(110));
}

TEST_F(CaeDriver, PollStateListsTheInputCards) {
  PlugCard(0x0, kDigitalOutput);
  PlugCard(0x3, kDigitalInput);
  PlugCard(0x8, kKeyMatrix);
  PlugCard(0xF, kAnalogueInput);
  StartOnBus();
  Command("POLLSTATE", std::string(kDisabled) + "PTI:0x3:ON\r\n\rPTI:0x8:ON\r\n\rPTI:0xF:ON\r\n\r");
  Command("POLLOFF:8", "CIA: POLLOFF is OK at address 8\r\n\r");
  Command("ENABLEPOLL", kEnabled);
  Command("POLLSTATE", std::string(kEnabled) + "PTI:0x3:ON\r\n\rPTI:0x8:OFF\r\n\rPTI:0xF:ON\r\n\r");
  Command("POLLON:8", "CIA: POLLON is OK at address 8\r\n\r");
  Command("DISABLEPOLL", kDisabled);
  Command("POLLSTATE", std::string(kDisabled) + "PTI:0x3:ON\r\n\rPTI:0x8:ON\r\n\rPTI:0xF:ON\r\n\r");
}

TEST_F(CaeDriver, PollCommandsAreForInputCards) {
  PlugCard(0x5, kDigitalOutput);
  StartOnBus();
  Command("POLLON:5", kInputsOnly);
  Command("POLLOFF:5", kInputsOnly);
  Command("POLLON:7", kInputsOnly);
  Command("POLLOFF:", kInputsOnly);
}

TEST_F(CaeDriver, AnyOtherAddressMeansCardZeroAndIsEchoed) {
  PlugCard(0x0, kDigitalInput);
  StartOnBus();
  Command("POLLON:g", "CIA: POLLON is OK at address g\r\n\r");
  Command("POLLOFF:a", "CIA: POLLOFF is OK at address a\r\n\r");
  Command("POLLSTATE", std::string(kDisabled) + "PTI:0x0:OFF\r\n\r");
}

TEST_F(CaeDriver, PollingFollowsBothFlags) {
  PlugCard(0x3, kDigitalInput);
  PlugCard(0x4, kDigitalInput);
  StartOnBus();
  Command("ENABLEPOLL", kEnabled);
  adapter.ExpectCount({0x20, 3, 2}, 3);
  adapter.ExpectCount({0x20, 4, 2}, 3);
  Command("POLLOFF:3", "CIA: POLLOFF is OK at address 3\r\n\r");
  adapter.ForgetFrames();
  // The round under way may still poll card 3; the one after it does not.
  adapter.ExpectCount({0x20, 4, 2}, 3);
  adapter.ExpectFrames({{0x20, 4, 2}, {0x20, 4, 2}, {0x20, 4, 2}});
}

TEST_F(CaeDriver, LineWithTwoCommandsDoesBothAndPromptsOnce) {
  PlugCard(0x3, kDigitalInput);
  StartOnBus();
  Command("POLLOFF:3 SPEED=80",
          "CIA: SPEED IS SET to 80%\r\n\rCIA: POLLOFF is OK at address 3\r\n\r");
  Command("POLLOFF:3 POLLON:4",
          "CIA: POLLON is OK at address 3\r\n\rCIA: POLLOFF is OK at address 3\r\n\r");
  Command("REBOOT:3 POLLON:3",
          "CIA: Card is REBOOTED\r\n\rRBT:0x3:OK\r\n\rCIA: POLLON is OK at address 3\r\n\r");
}

TEST_F(CaeDriver, DiscoverShowsTheTable) {
  adapter.PlugCard(0x1, 0x02);
  PlugCard(0x2, kNoAnswer);
  PlugCard(0x3, kDigitalInput);
  PlugCard(0x4, kDigitalOutput);
  PlugCard(0x5, kServo);
  PlugCard(0x6, kMotor);
  PlugCard(0x7, kAnalogueInput);
  PlugCard(0x8, kKeyMatrix);
  PlugCard(0x9, kLcd);
  PlugCard(0xA, kInfrared);
  PlugCard(0xF, 0x0B);
  StartOnBus();
  Command("DISCOVER",
          "DISCOVER LIST:\r\n\rDTI:0x0:EMPTY\r\n\rDTI:0x1:UNIDENTIFIED\r\n\rDTI:0x2:CARD?\r\n\r"
          "DTI:0x3:16 channel DIGITAL INPUT\r\n\rDTI:0x4:16 channel DIGITAL OUTPUT\r\n\r"
          "DTI:0x5:6 channel RC SERVO CONTROLLER\r\n\rDTI:0x6:3 channel DC MOTOR CONTROLLER\r\n\r"
          "DTI:0x7:6 channel ANALOGUE INPUT\r\n\rDTI:0x8:KEYMX and ROTE CONTROLLER\r\n\r"
          "DTI:0x9:ALPHANUMERIC LCD CONTROLLER\r\n\rDTI:0xA:IR REMOTE CONTROLLER\r\n\r"
          "DTI:0xB:EMPTY\r\n\rDTI:0xC:EMPTY\r\n\rDTI:0xD:EMPTY\r\n\rDTI:0xE:EMPTY\r\n\r"
          "DTI:0xF:UNIDENTIFIED\r\n\r");
  EXPECT_EQ(adapter.Frames().size(), 2U) << "DISCOVER itself asks nothing of the bus";
}

TEST_F(CaeDriver, ForceDiscoverAsksTheBusAgain) {
  PlugCard(0x0, kDigitalInput);
  StartOnBus();
  adapter.PlugCard(0x0, kEmpty);
  adapter.PlugCard(0xE, kLcd);
  Command("FORCEDISCOVER",
          "FORCED DISCOVER LIST:\r\n\rDTI:0x0:EMPTY\r\n\rDTI:0x1:EMPTY\r\n\rDTI:0x2:EMPTY\r\n\r"
          "DTI:0x3:EMPTY\r\n\rDTI:0x4:EMPTY\r\n\rDTI:0x5:EMPTY\r\n\rDTI:0x6:EMPTY\r\n\r"
          "DTI:0x7:EMPTY\r\n\rDTI:0x8:EMPTY\r\n\rDTI:0x9:EMPTY\r\n\rDTI:0xA:EMPTY\r\n\r"
          "DTI:0xB:EMPTY\r\n\rDTI:0xC:EMPTY\r\n\rDTI:0xD:EMPTY\r\n\r"
          "DTI:0xE:ALPHANUMERIC LCD CONTROLLER\r\n\rDTI:0xF:EMPTY\r\n\r");
  adapter.ExpectFrames({{0x30}});
}

TEST_F(CaeDriver, ForceDiscoverKeepsPollingAsItWasAndPollFramesSingle) {
  WriteConfig({.poll = "TRUE"});
  PlugCard(0x3, kDigitalInput);
  StartOnBus();
  cae.Send("FORCEDISCOVER\r\n");
  cae.ReadUntil("DTI:0xF:EMPTY\r\n\r>\r\n\r");
  Command("POLLSTATE", std::string(kEnabled) + "PTI:0x3:ON\r\n\r");
  adapter.ExpectFrame({0x30});
  adapter.ExpectFrames({{0x20, 3, 2}, {0x20, 3, 2}, {0x20, 3, 2}});
}

TEST_F(CaeDriver, RebootAsksAnyCard) {
  PlugCard(0xA, kMotor);
  StartOnBus();
  Command("REBOOT:A", "CIA: Card is REBOOTED\r\n\rRBT:0xA:OK\r\n\r");
  adapter.ExpectFrames({{0x50, 0x0A, 0x01, 0xAB}});
}

TEST_F(CaeDriver, RebootWithoutAnAnswerIsAnError) {
  StartOnBus();
  Command("REBOOT:4", "CIE: BUS WRITE ERROR\r\n\r");
  adapter.ExpectFrames({{0x50, 0x04, 0x01, 0xAB}});
}

TEST_F(CaeDriver, RebootWithoutABusIsAnError) {
  StartWithoutBus();
  Command("REBOOT:4", "CIE: BUS WRITE ERROR\r\n\r");
}

TEST_F(CaeDriver, CardRequestWaitsASecondAtTheRealPace) {
  PlugCard(0x4, kMotor);
  StartOnBus({.quick = false});
  const auto begin = std::chrono::steady_clock::now();
  Command("REBOOT:4", "CIA: Card is REBOOTED\r\n\rRBT:0x4:OK\r\n\r");
  EXPECT_GE(std::chrono::steady_clock::now() - begin, std::chrono::seconds(1));
}

TEST_F(CaeDriver, LastInputStateGoesToIo) {
  PlugCard(0x3, kDigitalInput);
  PlugCard(0xF, kAnalogueInput);
  StartOnBus();
  Client io = Connect(kIo);
  io.Send("a3b0d40\r\naFb5dC8\r\nend\r\n");
  ExpectIllegal(io, "end");
  Command("GETLASTINPST:3=0", kSent);
  io.ExpectBytes("a3b0d40\r\n\r");
  Command("GETLASTINPST:3=1", kSent);
  io.ExpectBytes("a3b1d00\r\n\r");
  Command("GETLASTINPST:F=5", kSent);
  io.ExpectBytes("aFb5dC8\r\n\r");
  Command("GETLASTINPST:F=2", kSent);
  io.ExpectBytes("aFb2d00\r\n\r");
}

TEST_F(CaeDriver, LastInputStateChecksTheBlock) {
  PlugCard(0x3, kDigitalInput);
  PlugCard(0xF, kAnalogueInput);
  StartOnBus();
  Command("GETLASTINPST:3=2", kBadBlock);
  Command("GETLASTINPST:3=F", kBadBlock);
  Command("GETLASTINPST:F=6", kBadBlock);
  Command("GETLASTINPST:3=x", kSent);
  Command("GETLASTINPST:3=", kSent);
  Command("GETLASTINPST:3", kSent);
}

TEST_F(CaeDriver, LastInputStateChecksTheCard) {
  PlugCard(0x5, kDigitalOutput);
  PlugCard(0x8, kKeyMatrix);
  StartOnBus();
  Command("GETLASTINPST:5=0", kBadInput);
  Command("GETLASTINPST:8=0", kBadInput);
  Command("GETLASTINPST:0=0", kBadInput);
}

TEST_F(CaeDriver, ExitSaysGoodbyeAndTheDaemonRunsOn) {
  StartWithoutBus();
  cae.Send("EXIT\r\n");
  cae.ExpectBytes("QELM: Bye Bye...\r\n\r");
  cae.ExpectClosed();
  cae = Dial(kCae);
  cae.ExpectBytes(">\r\n\rQELM CAE interface is ready\r\n(Type HELP for help)\r\n>\r\n\r");
  ExpectAnswer();
}
