// Commands that reach the cards, and inputs that reach the clients.
#include "SiteTest.h"

namespace {

class Traffic : public SiteTest {
 protected:
  // The bus is polled; IO and MON have each a client.
  void StartPolled() {
    WriteConfig({.poll = "TRUE"});
    StartSite();
    io = Connect(kIo);
    mon = Connect(kMon);
  }
  // A poll of card 3 that was queued before now has been answered by then: the second poll
  // of a card behind it belongs to a later round, the third allows for a link that was lost.
  void AwaitLaterRound() {
    Bus("mark");
    for (int poll = 0; poll < 3; ++poll) WaitFrame("20 08 01");
  }
  void ExpectReport(const std::string& report, Place place = Place::current()) {
    io.ExpectBytes(report + "\r\n\r", place);
    mon.ExpectBytes(report + "\r\n\r", place);
  }

  Client io;
  Client mon;
};

}  // namespace

TEST_F(Traffic, TextAppearsOnTheDisplay) {
  StartSite();
  Connect(kIo).Send("aElCL\r\naElPAp0301tTail of the cat\r\n");
  WaitFrame("10 0E 01 00");
  WaitFrame("10 0E 13 09 03 01 54 61 69 6C 20 6F 66 20 74 68 65 20 63 61 74 00");
  ExpectHeld("E", "Row1 \"   Tail of the cat  \"");
}

TEST_F(Traffic, ServoMovesAndTheOthersStay) {
  StartSite();
  Connect(kIo).Send("a0b4d40\r\n");
  WaitFrame("10 00 06 80 80 80 80 40 80");
  ExpectHeld("0", "reached 80 80 80 80 40 80");
}

TEST_F(Traffic, OutputLineIsSwitched) {
  StartSite();
  Connect(kIo).Send("a5b1dFB\r\n");
  WaitFrame("10 05 02 FF FB");
  ExpectHeld("5", "Lines FF FB");
}

TEST_F(Traffic, MotorRunsBackward) {
  StartSite();
  Connect(kIo).Send("a4b1d64\r\na4b3d02\r\n");
  WaitFrame("10 04 04 00 64 00 00");
  WaitFrame("10 04 04 00 64 00 02");
  ExpectHeld("4", "speed 0 -100 0");
}

TEST_F(Traffic, InfraredIsSent) {
  StartSite();
  Connect(kIo).Send("a9sHS434F434B524F414348\r\n");
  ExpectHeld("9", "sent 43 4F 43 4B 52 4F 41 43 48");
}

TEST_F(Traffic, CommandIsCopiedToTheMonitor) {
  StartPolled();
  io.Send("a5b0d7F\r\n");
  mon.ExpectBytes("a5b0d7F\r\n\r");
  WaitFrame("10 05 02 7F FF");
}

TEST_F(Traffic, PressedLineIsReportedOnceAndItsReleaseToo) {
  StartPolled();
  Bus("press 3 06");
  ExpectReport("a3b0d40");
  Bus("release 3 06");
  ExpectReport("a3b0d00");
  Bus("set 3 0 01 80");
  ExpectReport("a3b0d01");
  ExpectReport("a3b1d80");
  io.ExpectSilence();
}

TEST_F(Traffic, KeyIsReported) {
  StartPolled();
  Bus("press 8 05");
  ExpectReport("a8b0d05");
  Bus("release 8");
  ExpectReport("a8b0d00");
}

TEST_F(Traffic, EncoderIsReportedStepByStep) {
  StartPolled();
  Bus("turn 8 4");
  for (const char* report : {"a8b0d40", "a8b0dC0", "a8b0d80", "a8b0d00"}) ExpectReport(report);
  Bus("turn 8 -1");
  ExpectReport("a8b0d80");
}

TEST_F(Traffic, AnalogueValueArrivesAfterItsAverages) {
  StartPolled();
  Bus("set F 3 60");
  // An average of polls on both sides of the change may come first.
  std::string report = io.ReadUntil("\r\n\r");
  if (report != "aFb3d60\r\n\r") report = io.ReadUntil("\r\n\r");
  EXPECT_EQ(report, "aFb3d60\r\n\r");
  io.ExpectSilence();
}

TEST_F(Traffic, LastStateIsSentAgainOnRequest) {
  StartPolled();
  Bus("set 3 1 81");
  ExpectReport("a3b1d81");
  Command("GETLASTINPST:3=1", "CIA: LAST INPUT STATE SENT ON IO INTERFACE\r\n\r");
  ExpectReport("a3b1d81");
}

TEST_F(Traffic, CardWithoutPollingIsSilentUntilItIsPolledAgain) {
  StartPolled();
  Command("POLLOFF:3", "CIA: POLLOFF is OK at address 3\r\n\r");
  AwaitLaterRound();
  Bus("press 3 00");
  AwaitLaterRound();
  Bus("press 8 01");
  ExpectReport("a8b0d01");
  Command("POLLON:3", "CIA: POLLON is OK at address 3\r\n\r");
  ExpectReport("a3b0d01");
}
