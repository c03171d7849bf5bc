// The administration commands that act on the daemon and on the bus as a whole.
#include "kit/Helper.h"
#include "support/QelmTest.h"

namespace {

class DriverCommands : public CaeTest {
 protected:
  void ExpectDelay(int delay) const {
    EXPECT_EQ(qelm.Config.ThreadDelay, delay);
    EXPECT_EQ(qelm.SerialInterface->ThreadDelay, delay);
    EXPECT_EQ(qelm.CaeInterface->Descriptor.ThreadDelay, delay);
    EXPECT_EQ(qelm.IoInterface->Descriptor.ThreadDelay, delay);
    EXPECT_EQ(qelm.MonInterface->Descriptor.ThreadDelay, delay);
  }

  // One reply and the prompt.
  void ExpectReply(const std::string& line, const std::string& reply) {
    EXPECT_EQ(Run(line + "\r\n"), (Texts{reply + "\r\n", ">\r\n"})) << line;
  }
};

constexpr const char* kOutOfRange = "CIE: Parameter is out of range (1..100)";
constexpr const char* kInputOnly = "CIE: THIS COMMAND IS VALID ON INPUT CARDS";
constexpr const char* kSent = "CIA: LAST INPUT STATE SENT ON IO INTERFACE";
constexpr const char* kInvalidBlock = "CIE: INVALID BLOCK NUMBER";

}  // namespace

TEST_F(DriverCommands, SpeedReachesAllFiveDelays) {
  struct Case {
    const char* text;
    int delay;
  };
  for (const Case& c : {Case{"1", 5000}, Case{"2", 4949}, Case{"007", 4697}, Case{"50", 2525},
                        Case{"99", 51}, Case{"100", 1}, Case{" 50x", 2525}}) {
    ExpectReply("SPEED=" + std::string(c.text),
                "CIA: SPEED IS SET to " + std::string(c.text) + "%");
    ExpectDelay(c.delay);
  }
}

TEST_F(DriverCommands, ASpeedOutOfRangeChangesNothing) {
  ExpectReply("SPEED=50", "CIA: SPEED IS SET to 50%");
  for (const char* text :
       {"0", "101", "-5", "", "x", "4294967346", "99999999999999999999", "-99999999999999999999"}) {
    ExpectReply("SPEED=" + std::string(text), kOutOfRange);
    ExpectDelay(2525);
  }
}

TEST_F(DriverCommands, SpeedNeedsNoSeparatorAndNoPlaceInTheLine) {
  EXPECT_EQ(Run("SPEED=50"), (Texts{"CIA: SPEED IS SET to 50%\r\n", ">\r\n"}));
  EXPECT_EQ(Run("my SPEED=99\n"), (Texts{"CIA: SPEED IS SET to 99%\r\n", ">\r\n"}));
  ExpectDelay(51);
}

TEST_F(DriverCommands, TheFirstEqualsOfTheLineHoldsTheSpeed) {
  ExpectReply("x=2 SPEED=50", "CIA: SPEED IS SET to 2 SPEED=50%");
  ExpectDelay(4949);
}

TEST_F(DriverCommands, ShowsTheVersion) { ExpectReply("DRVVER", "CIA: DRIVER VERSION 1.20"); }

TEST_F(DriverCommands, SwitchesGlobalPolling) {
  ExpectReply("ENABLEPOLL", "CIA: GLOBAL POLLING IS ENABLED");
  EXPECT_EQ(qelm.SerialInterface->EnablePoll, 1);
  EXPECT_FALSE(qelm.Config.EnablePoll);
  ExpectReply("POLLSTATE", "CIA: GLOBAL POLLING IS ENABLED");
  ExpectReply("DISABLEPOLL", "CIA: GLOBAL POLLING IS DISABLED");
  EXPECT_EQ(qelm.SerialInterface->EnablePoll, 0);
  ExpectReply("POLLSTATE", "CIA: GLOBAL POLLING IS DISABLED");
}

TEST_F(DriverCommands, SwitchesThePollingOfAnInputCard) {
  PlugCard(0, 0x04);
  PlugCard(10, 0x07);
  ExpectReply("POLLOFF:A", "CIA: POLLOFF is OK at address A");
  EXPECT_EQ(qelm.Cards[10].PollEnabled, 0);
  EXPECT_EQ(qelm.Cards[0].PollEnabled, 1);
  ExpectReply("POLLON:A", "CIA: POLLON is OK at address A");
  EXPECT_EQ(qelm.Cards[10].PollEnabled, 1);
}

TEST_F(DriverCommands, AnAddressThatIsNoDigitIsCardZeroAndEchoesAsTyped) {
  PlugCard(0, 0x04);
  ExpectReply("POLLOFF:g", "CIA: POLLOFF is OK at address g");
  EXPECT_EQ(qelm.Cards[0].PollEnabled, 0);
  ExpectReply("POLLON:g", "CIA: POLLON is OK at address g");
  EXPECT_EQ(qelm.Cards[0].PollEnabled, 1);
}

TEST_F(DriverCommands, AnAbsentAddressIsCardZeroAndEchoesAsNothing) {
  qelm.Config.CaeDescriptor.InpSeparator = "";
  PlugCard(0, 0x04);
  EXPECT_EQ(Run("POLLOFF:"), (Texts{"CIA: POLLOFF is OK at address \r\n", ">\r\n"}));
  EXPECT_EQ(qelm.Cards[0].PollEnabled, 0);
}

TEST_F(DriverCommands, OnlyInputCardsArePolled) {
  PlugCard(2, 0x03);
  PlugCard(3, 0xFF);
  for (const char* line : {"POLLON:2", "POLLOFF:2", "POLLON:3", "POLLON:4"})
    ExpectReply(line, kInputOnly);
  EXPECT_EQ(qelm.Cards[2].PollEnabled, 0);
}

TEST_F(DriverCommands, ShowsThePollingOfEveryInputCard) {
  PlugCard(3, 0x04);
  PlugCard(5, 0x03);
  PlugCard(10, 0x07);
  PlugCard(15, 0x08);
  qelm.Cards[10].PollEnabled = 0;
  qelm.SerialInterface->EnablePoll = 1;
  EXPECT_EQ(Run("POLLSTATE\r\n"), (Texts{"CIA: GLOBAL POLLING IS ENABLED\r\n", "PTI:0x3:ON\r\n",
                                         "PTI:0xA:OFF\r\n", "PTI:0xF:ON\r\n", ">\r\n"}));
}

TEST_F(DriverCommands, ShowsTheCardTableAndAsksNobody) {
  PlugCard(3, 0x04);
  PlugCard(14, 0x09);
  PlugCard(15, 0xFF);
  EXPECT_EQ(
      Run("DISCOVER\r\n"),
      (Texts{"DISCOVER LIST:\r\n", "DTI:0x0:EMPTY\r\n", "DTI:0x1:EMPTY\r\n", "DTI:0x2:EMPTY\r\n",
             "DTI:0x3:16 channel DIGITAL INPUT\r\n", "DTI:0x4:EMPTY\r\n", "DTI:0x5:EMPTY\r\n",
             "DTI:0x6:EMPTY\r\n", "DTI:0x7:EMPTY\r\n", "DTI:0x8:EMPTY\r\n", "DTI:0x9:EMPTY\r\n",
             "DTI:0xA:EMPTY\r\n", "DTI:0xB:EMPTY\r\n", "DTI:0xC:EMPTY\r\n", "DTI:0xD:EMPTY\r\n",
             "DTI:0xE:ALPHANUMERIC LCD CONTROLLER\r\n", "DTI:0xF:CARD?\r\n", ">\r\n"}));
}

TEST_F(DriverCommands, ForcedDiscoveryClearsTheTableAndAsksTheBus) {
  const SleepRecord sleeps;
  PlugCard(3, 0x04);
  qelm.SerialInterface->EnablePoll = 1;
  SleepGate gate;
  Helper serial_side([&] {
    EXPECT_TRUE(WaitUntil([&] { return LoadShared(qelm.SerialInterface->EnablePoll) == 0; }));
    EXPECT_TRUE(CardQueue(16).IsEmpty());
    EXPECT_EQ(qelm.Cards[3].Name(), "16 channel DIGITAL INPUT");
    EXPECT_TRUE(gate.Open());
    EXPECT_TRUE(WaitUntil([&] { return !CardQueue(16).IsEmpty(); }));
    EXPECT_EQ(CardQueue(16).DeQueue(), List({0x30}));
    EXPECT_EQ(qelm.Cards[3].Name(), "EMPTY");
    PlugCard(4, 0x07);
    EXPECT_TRUE(gate.Open());
  });
  qelm.ParseCaeLine("FORCEDISCOVER\r\n");
  serial_side.Join();
  const Texts replies = CaeReplies();
  ASSERT_EQ(replies.size(), 18U);
  EXPECT_EQ(replies[0], "FORCED DISCOVER LIST:\r\n");
  EXPECT_EQ(replies[4], "DTI:0x3:EMPTY\r\n");
  EXPECT_EQ(replies[5], "DTI:0x4:6 channel ANALOGUE INPUT\r\n");
  EXPECT_EQ(replies[17], ">\r\n");
  EXPECT_EQ(qelm.SerialInterface->EnablePoll, 1);
  EXPECT_EQ(sleeps.Seconds(), (Texts{"1", "1"}));
}

TEST_F(DriverCommands, ForcedDiscoveryLeavesPollingOffWhereItWasOff) {
  qelm.ParseCaeLine("FORCEDISCOVER\r\n");
  EXPECT_EQ(qelm.SerialInterface->EnablePoll, 0);
}

TEST_F(DriverCommands, ExitClosesTheSessionAndLeavesThePromptForTheNext) {
  const SleepRecord sleeps;
  Publish<int>(qelm.CaeInterface->Descriptor.State, 3);
  ExpectReply("EXIT", "QELM: Bye Bye...");
  EXPECT_EQ(qelm.CaeInterface->Descriptor.State, 4);
  EXPECT_TRUE(log.Has("[INF] connection is closed by command on CAE interface"));
  EXPECT_EQ(sleeps.Seconds(), Texts{"1"});
}

TEST_F(DriverCommands, ReportsTheLastInputStateLikeAChange) {
  PlugCard(3, 0x04);
  PlugCard(15, 0x07);
  qelm.Cards[3].BlockData = {0x40, 0x0F};
  qelm.Cards[15].BlockData = {1, 2, 3, 4, 5, 0xFE};
  for (const char* line : {"GETLASTINPST:3=0", "GETLASTINPST:3=1", "GETLASTINPST:F=5"})
    ExpectReply(line, kSent);
  EXPECT_EQ(TakeTexts(*qelm.SerialQueue), (Texts{"a3b0d40", "a3b1d0F", "aFb5dFE"}));
}

TEST_F(DriverCommands, ABlockThatTheCardLacksIsInvalid) {
  PlugCard(3, 0x04);
  PlugCard(15, 0x07);
  for (const char* line : {"GETLASTINPST:3=2", "GETLASTINPST:3=F", "GETLASTINPST:F=6"})
    ExpectReply(line, kInvalidBlock);
  EXPECT_TRUE(qelm.SerialQueue->IsEmpty());
}

TEST_F(DriverCommands, AnAbsentBlockIsBlockZero) {
  PlugCard(3, 0x04);
  for (const char* line : {"GETLASTINPST:3", "GETLASTINPST:3=", "GETLASTINPST:3=z"})
    ExpectReply(line, kSent);
  EXPECT_EQ(TakeTexts(*qelm.SerialQueue), Texts(3, "a3b0d00"));
}

TEST_F(DriverCommands, OtherCardsHaveNoLastInputState) {
  PlugCard(1, 0x08);
  PlugCard(2, 0x03);
  for (const char* line : {"GETLASTINPST:1=0", "GETLASTINPST:2=0", "GETLASTINPST:4=0"})
    ExpectReply(line, "CIE: THIS COMMAND IS VALID ON ANALOG OR DIGITAL INPUT CARD ONLY");
  EXPECT_TRUE(qelm.SerialQueue->IsEmpty());
}
