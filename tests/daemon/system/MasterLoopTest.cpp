// What goes where: reports, IO lines, the monitor's copies, CAE lines.
#include <signal.h>

#include "DaemonTest.h"

namespace {

class MasterLoop : public DaemonTest {};

}  // namespace

TEST_F(MasterLoop, ReportsReachIoAndMon) {
  WriteConfig({.poll = "TRUE"});
  PlugCard(3, kDigitalInput);
  StartOnBus();
  Client mon = Connect(kMon);
  Client io = Connect(kIo);
  adapter.SetInputs(3, {0x40, 0x00});
  io.ExpectBytes("a3b0d40\r\n\r");
  mon.ExpectBytes("a3b0d40\r\n\r");
}

TEST_F(MasterLoop, ReportsReachIoWithoutMonAndWithoutCae) {
  WriteConfig({.poll = "TRUE"});
  PlugCard(3, kDigitalInput);
  StartOnBus();
  cae.Close();
  Client io = Connect(kIo);
  adapter.SetInputs(3, {0x00, 0x81});
  io.ExpectBytes("a3b1d81\r\n\r");
}

TEST_F(MasterLoop, ReportsEndWithTheOutSeparatorOfIo) {
  WriteConfig({.poll = "TRUE", .io_output = ";"});
  PlugCard(0xC, kKeyMatrix);
  StartOnBus();
  Client mon = Connect(kMon);
  Client io = Connect(kIo);
  adapter.SetInputs(0xC, {0x0F});
  io.ExpectBytes("aCb0d0F;\r");
  mon.ExpectBytes("aCb0d0F;\r");
}

TEST_F(MasterLoop, ReportsWithoutAnIoClientReachNobody) {
  PlugCard(3, kDigitalInput);
  StartOnBus();
  Client mon = Connect(kMon);
  const std::string sent = "CIA: LAST INPUT STATE SENT ON IO INTERFACE\r\n\r";
  Command("GETLASTINPST:3=1", sent);
  ExpectAnswer();
  Client io = Connect(kIo);
  Command("GETLASTINPST:3=0", sent);
  io.ExpectBytes("a3b0d00\r\n\r");
  mon.ExpectBytes("a3b0d00\r\n\r");
}

TEST_F(MasterLoop, MonGetsIoLinesAsTyped) {
  StartDaemon();
  Client mon = Connect(kMon);
  Client io = Connect(kIo);
  io.Send("a5b1dFB\r\na5b0d00\n");
  mon.ExpectBytes("a5b1dFB\r\na5b0d00\n\r");
  io.Send("a0");
  mon.ExpectBytes("a0\r");
}

TEST_F(MasterLoop, MonThatComesLaterGetsNoOldLines) {
  StartDaemon();
  cae = Connect(kCae);
  Client io = Connect(kIo);
  io.Send("old\r\n");
  cae.ExpectBytes("COE:Illegal command -> old\r\n\r>\r\n\r");
  ExpectAnswer();
  Client mon = Connect(kMon);
  io.Send("new\r\n");
  mon.ExpectBytes("new\r\n\r");
}

TEST_F(MasterLoop, ExitIsNotCopiedToMon) {
  StartDaemon();
  Client mon = Connect(kMon);
  Client io = Connect(kIo);
  io.Send("EXIT\r\n");
  io.ExpectBytes("QELM: Bye Bye...\r\n\r");
  io.ExpectClosed();
  io = Connect(kIo);
  io.Send("a0b0d00\r\n");
  mon.ExpectBytes("a0b0d00\r\n\r");
}

TEST_F(MasterLoop, FarewellEndsWithTheOutSeparatorOfIo) {
  WriteConfig({.io_input = "!", .io_output = "#"});
  StartDaemon();
  Client io(kIo);
  io.ExpectBytes("QELM IO interface is ready\r\n\r");
  io.Send("EXIT!");
  io.ExpectBytes("QELM: Bye Bye...#\r");
  io.ExpectClosed();
}

TEST_F(MasterLoop, ExitWithAnotherLineEndIsAnOrdinaryLine) {
  StartDaemon();
  cae = Connect(kCae);
  Client mon = Connect(kMon);
  Client io = Connect(kIo);
  io.Send("EXIT\n");
  mon.ExpectBytes("EXIT\n\r");
  cae.ExpectBytes("COE:Illegal command -> EXIT\n\r\n\r>\r\n\r");
  io.Send("exit\r\n");
  cae.ExpectBytes("COE:Illegal command -> exit\r\n\r>\r\n\r");
  io.Send(" EXIT\r\n");
  cae.ExpectBytes("COE:Illegal command ->  EXIT\r\n\r>\r\n\r");
}

TEST_F(MasterLoop, IoLinesKeepTheirOrder) {
  PlugCard(2, kDigitalOutput);
  StartOnBus();
  Client io = Connect(kIo);
  std::vector<Bytes> frames;
  // As many as fit one read, should the daemon find them all at once.
  for (std::uint8_t value = 0; value < 28; ++value) {
    io.Send("a2b0d" + Hex(value) + "\r\n");
    frames.push_back({0x10, 2, 2, value, 0xFF});
  }
  adapter.ExpectFrames(frames);
}

TEST_F(MasterLoop, SigtermDoesNotWaitForQueuedCaeLines) {
  StartOnBus();
  for (int line = 0; line < 200; ++line) {
    // A line an item: each one holds the loop for a second's wait.
    cae.Send("REBOOT:0\r\n" + std::string(245, ' '));
  }
  adapter.ExpectFrame({0x50, 0, 0x01, 0xAB});
  const auto begin = std::chrono::steady_clock::now();
  StopDaemon();
  EXPECT_LT(std::chrono::steady_clock::now() - begin, std::chrono::seconds(60));
  EXPECT_LT(adapter.Frames().size(), 100U);
}

TEST_F(MasterLoop, IoLinesFlowBetweenCaeLines) {
  PlugCard(2, kDigitalOutput);
  StartOnBus();
  Client io = Connect(kIo);
  for (int line = 0; line < 50; ++line) cae.Send(std::string(255, 'x'));
  io.Send("a2b0d01\r\n");
  adapter.ExpectFrame({0x10, 2, 2, 0x01, 0xFF});
}
