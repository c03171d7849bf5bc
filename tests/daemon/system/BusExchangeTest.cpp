// Queues, polling and input reports, as the adapter and the IO client see them.
#include "DaemonTest.h"

namespace {

class BusExchange : public DaemonTest {
 protected:
  // Polls run, and an IO client listens.
  void StartPolling(int address, std::uint8_t kind) {
    WriteConfig({.poll = "TRUE"});
    PlugCard(address, kind);
    StartOnBus();
    io = Connect(kIo);
  }

  // Nothing was reported before this card's next change.
  void ExpectNextReport(int address, Bytes blocks, const std::string& report,
                        Place place = Place::current()) {
    adapter.SetInputs(address, std::move(blocks));
    io.ExpectBytes(report, place);
  }

  // The adapter stops in mid-exchange: the frame that this line sends is lost.
  void PullTheCable(const std::string& line) {
    adapter.Pull();
    io.Send(line);
    ExpectLog("ERR", "ttyUSB devices couldn't be found");
  }

  Client io;
};

}  // namespace

TEST_F(BusExchange, DiscoveryIsTheFirstFrameAfterTheCheck) {
  adapter.Plug();
  StartDaemon();
  adapter.ExpectFrames({{0x40, 0x6F, 0x9A}, {0x30}});
}

TEST_F(BusExchange, InputCardsArePolledInOrderOncePerRound) {
  WriteConfig({.poll = "TRUE"});
  PlugCard(0x1, kDigitalInput);
  PlugCard(0x2, kDigitalOutput);
  PlugCard(0x7, kAnalogueInput);
  PlugCard(0xF, kKeyMatrix);
  StartOnBus();
  adapter.ExpectFrame({0x20, 0x0F, 1});
  adapter.ExpectFrames({{0x20, 0x01, 2},
                        {0x20, 0x07, 6},
                        {0x20, 0x0F, 1},
                        {0x20, 0x01, 2},
                        {0x20, 0x07, 6},
                        {0x20, 0x0F, 1}});
}

TEST_F(BusExchange, ChangedBlocksAreReported) {
  StartPolling(3, kDigitalInput);
  ExpectNextReport(3, {0x00, 0x3C}, "a3b1d3C\r\n\r");
  ExpectNextReport(3, {0x40, 0x3C}, "a3b0d40\r\n\r");
  ExpectNextReport(3, {0x41, 0x0A}, "a3b0d41\r\n\ra3b1d0A\r\n\r");
  adapter.ForgetFrames();
  adapter.ExpectCount({0x20, 3, 2}, 5);
  ExpectNextReport(3, {0x00, 0x0A}, "a3b0d00\r\n\r");
}

TEST_F(BusExchange, KeyMatrixHasOneBlock) {
  StartPolling(0xB, kKeyMatrix);
  ExpectNextReport(0xB, {0x05, 0x99}, "aBb0d05\r\n\r");
  ExpectNextReport(0xB, {0x06, 0x00}, "aBb0d06\r\n\r");
}

TEST_F(BusExchange, InputIsComparedWithWhatAnIoCommandStored) {
  StartPolling(3, kDigitalInput);
  io.Send("a3b0d12\r\n");
  io.ExpectBytes("a3b0d00\r\n\r");
}

TEST_F(BusExchange, AnalogueCardReportsOnItsSeventhReply) {
  PlugCard(0xF, kAnalogueInput);
  StartOnBus();
  io = Connect(kIo);
  const auto sample = [](std::uint8_t value) {
    return Packet({'!', 0x0F, value, 0x00, 0x00, 0xFF, 0x00, 0x01});
  };
  adapter.Script({0x20}, {sample(10), sample(20), sample(30), sample(41), sample(51), sample(61),
                          sample(255), Packet({'A'})});
  adapter.Always({0x20}, Packet({'A'}));
  Command("ENABLEPOLL", "CIA: GLOBAL POLLING IS ENABLED\r\n\r");
  // (10 + 20 + 30 + 41 + 51 + 61) / 6 = 35, rounded down; the seventh counts nowhere
  io.ExpectBytes("aFb0d23\r\n\raFb3dFF\r\n\raFb5d01\r\n\r");
  adapter.ExpectCount({0x20, 0x0F, 6}, 9);
  io.ExpectSilence();
}

TEST_F(BusExchange, AnalogueAveragesBeginAfresh) {
  StartPolling(0xF, kAnalogueInput);
  adapter.SetInputs(0xF, {100, 0, 0, 0, 0, 0});
  io.ReadUntil("aFb0d64\r\n\r");
  adapter.SetInputs(0xF, {100, 0, 0, 0, 0, 7});
  io.ReadUntil("aFb5d07\r\n\r");
  adapter.ForgetFrames();
  adapter.ExpectCount({0x20, 0x0F, 6}, 21);
  io.ExpectSilence();
}

TEST_F(BusExchange, OneFrameOfEachQueueIsSentPerRound) {
  PlugCard(2, kDigitalOutput);
  PlugCard(5, kDigitalOutput);
  StartOnBus();
  io = Connect(kIo);
  PullTheCable("a5b0d00\r\n");
  io.Send("a5b0d01\r\na5b0d02\r\na5b0d03\r\na2b0d01\r\na2b0d02\r\nend\r\n");
  cae.ExpectBytes("COE:Illegal command -> end\r\n\r>\r\n\r");
  adapter.ForgetFrames();
  adapter.Plug();
  adapter.ExpectFrames({{0x40, 0x6F, 0x9A},
                        {0x10, 2, 2, 0x01, 0xFF},
                        {0x10, 5, 2, 0x01, 0xFF},
                        {0x30},
                        {0x10, 2, 2, 0x02, 0xFF},
                        {0x10, 5, 2, 0x02, 0xFF},
                        {0x10, 5, 2, 0x03, 0xFF}});
}

TEST_F(BusExchange, TimeOutClosesTheLinkAndOpensItAgain) {
  PlugCard(5, kDigitalOutput);
  StartOnBus();
  io = Connect(kIo);
  adapter.Script({0x10}, {Silence()});
  io.Send("a5b0d01\r\na5b0d02\r\na5b0d03\r\n");
  ExpectLog("INF", "hardware found on /dev/ttyUSB0 version: v1.2", 2);
  EXPECT_EQ(CountLogged("[INF] comm timeout /dev/ttyUSB0"), 1);
  adapter.ExpectFrames({{0x10, 5, 2, 0x01, 0xFF},
                        {0x40, 0x6F, 0x9A},
                        {0x10, 5, 2, 0x02, 0xFF},
                        {0x30},
                        {0x10, 5, 2, 0x03, 0xFF}});
}

TEST_F(BusExchange, RediscoveryDoublesThePollFrame) {
  StartPolling(3, kDigitalInput);
  adapter.Script({0x20}, {Silence()});
  adapter.ExpectFrame({0x30});
  adapter.ExpectFrame({0x20, 3, 2, 0x20, 3, 2});
  adapter.ExpectFrames({{0x20, 3, 2, 0x20, 3, 2}, {0x20, 3, 2, 0x20, 3, 2}});
  ExpectNextReport(3, {0x11, 0x00}, "a3b0d11\r\n\r");
}

TEST_F(BusExchange, RediscoverySetsOutputBlocksBack) {
  PlugCard(5, kDigitalOutput);
  StartOnBus();
  io = Connect(kIo);
  adapter.Script({0x10}, {Silence()});
  io.Send("a5b0d01\r\n");
  adapter.ExpectFrame({0x30});
  Command("REBOOT:5", "CIA: Card is REBOOTED\r\n\rRBT:0x5:OK\r\n\r");
  adapter.ExpectFrame({0x50, 5, 0x01, 0xAB});
  io.Send("a5b1d02\r\n");
  adapter.ExpectFrames({{0x10, 5, 2, 0xFF, 0x02}});
}

TEST_F(BusExchange, WithoutAutoDiscoverALinkIsOpenedWithoutAsking) {
  WriteConfig({.discover = "FALSE"});
  PlugCard(5, kDigitalOutput);
  adapter.Plug();
  StartDaemon();
  cae = Connect(kCae);
  cae.Send("FORCEDISCOVER\r\n");
  cae.ReadUntil("DTI:0x5:16 channel DIGITAL OUTPUT\r\n\r");
  io = Connect(kIo);
  adapter.ForgetFrames();
  adapter.Script({0x10}, {Silence()});
  io.Send("a5b0d01\r\na5b0d02\r\n");
  adapter.ExpectFrames({{0x10, 5, 2, 0x01, 0xFF}, {0x40, 0x6F, 0x9A}, {0x10, 5, 2, 0x02, 0xFF}});
}

TEST_F(BusExchange, PollsOfAClosedLinkPileUpTo64) {
  WriteConfig({.poll = "TRUE"});
  PlugCard(3, kDigitalInput);
  StartOnBus({.environment = {{"QELM_TEST_SLEEP_DIVISOR", "1000"}}});
  adapter.Pull();
  ExpectLog("ERR", "ttyUSB devices couldn't be found", 80);
  Command("DISABLEPOLL", "CIA: GLOBAL POLLING IS DISABLED\r\n\r");
  adapter.ForgetFrames();
  adapter.Plug();
  adapter.ExpectCount({0x20, 3, 2}, 64);
  cae.Send("REBOOT:3\r\n");
  // A 65th poll would come before the request, or in its round.
  adapter.ExpectFrames({{0x50, 3, 0x01, 0xAB}});
}
