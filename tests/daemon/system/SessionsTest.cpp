// How sessions end, and that the port comes back whatever ended them.
#include <cstdlib>

#include "DaemonTest.h"

namespace {

using std::chrono::milliseconds;
using std::chrono::steady_clock;

class Sessions : public DaemonTest {
 protected:
  // A client is greeted, if need be after one that a late command turned away.
  static void ExpectPortComesBack(Port port, Place place = Place::current()) {
    const char* greeting = port == kIo    ? "QELM IO interface is ready\r\n\r"
                           : port == kMon ? "QELM MON interface is ready\r\n\r"
                                          : "(Type HELP for help)\r\n>\r\n\r";
    if (!WaitUntil([&] { return Dial(port).Sees(greeting); })) {
      FAIL_AT(place) << "no greeting on port " << port;
    }
  }

  // Sends more than the buffers of a client that does not read can hold, and waits
  // until all is read: what follows is an item of its own.
  static void Flood(Client& io, Place place = Place::current()) {
    for (int item = 0; item < 6000; ++item) io.Send(std::string(255, '.'));
    if (!WaitUntil([] { return AllIsRead(kIo); })) FAIL_AT(place) << "IO is not read";
  }

  static milliseconds Since(steady_clock::time_point begin) {
    return std::chrono::duration_cast<milliseconds>(steady_clock::now() - begin);
  }
};

}  // namespace

TEST_F(Sessions, ClientThatClosesFreesThePort) {
  StartDaemon();
  Connect(kIo).Close();
  ExpectLog("INF", "connection is closed by client on IO interface");
  Connect(kIo);
  ExpectLog("INF", "connection is closed by client on IO interface", 2);
}

TEST_F(Sessions, ClientThatHalfClosesHasGone) {
  StartDaemon();
  Client mon = Connect(kMon);
  mon.HalfClose();
  mon.ExpectClosed();
  ExpectLog("INF", "connection is closed by client on MON interface");
  Connect(kMon);
}

TEST_F(Sessions, ClientThatResetsHasGone) {
  StartDaemon();
  cae = Connect(kCae);
  cae.Reset();
  ExpectLog("INF", "connection is closed by client on CAE interface");
  cae = Connect(kCae);
  ExpectAnswer();
}

TEST_F(Sessions, ResetInMidReplyIsSurvived) {
  StartDaemon();
  for (int round = 1; round <= 3; ++round) {
    cae = Dial(kCae);
    cae.ReadUntil("interface is ready\r\n(Type HELP for help)\r\n>\r\n\r");
    cae.Send("HELP\r\n");
    cae.ReadUntil("QELM quick HELP:\r\n\r");
    cae.Reset();
    ExpectLog("INF", "connection is closed by client on CAE interface", round);
  }
  ExpectPortComesBack(kCae);
}

TEST_F(Sessions, ClientThatResetsBeforeItsGreetingIsSurvived) {
  StartDaemon();
  for (int round = 1; round <= 3; ++round) {
    Client(kIo).Reset();
    ExpectLog("INF", "IO interface listening on port 5002", round + 1);
  }
  ExpectPortComesBack(kIo);
}

TEST_F(Sessions, ItemsLeftOverReachTheNextClientAheadOfItsGreeting) {
  StartDaemon();
  cae = Connect(kCae);
  cae.Send("EXIT\r\n");
  cae.ExpectBytes("QELM: Bye Bye...\r\n\r");
  cae.ExpectClosed();
  Dial(kCae).ExpectBytes(">\r\n\rQELM CAE interface is ready\r\n(Type HELP for help)\r\n>\r\n\r");
}

TEST_F(Sessions, RepliesWithoutAClientWaitForTheNextOne) {
  StartDaemon();
  Client mon = Connect(kMon);
  Client io = Connect(kIo);
  io.Send("nonsense\r\n");
  mon.ExpectBytes("nonsense\r\n\r");
  Client(kCae).ExpectBytes(
      "COE:Illegal command -> nonsense\r\n\r>\r\n\r"
      "QELM CAE interface is ready\r\n(Type HELP for help)\r\n>\r\n\r");
}

TEST_F(Sessions, IoExitClosesItsSessionOnly) {
  StartDaemon();
  cae = Connect(kCae);
  Client io = Connect(kIo);
  io.Send("EXIT\r\n");
  io.ExpectBytes("QELM: Bye Bye...\r\n\r");
  io.ExpectClosed();
  ExpectLog("INF", "connection is closed by command on IO interface");
  ExpectAnswer();
  Connect(kIo);
}

TEST_F(Sessions, CaeExitClosesItsSessionOnly) {
  StartDaemon();
  Client mon = Connect(kMon);
  Client io = Connect(kIo);
  cae = Connect(kCae);
  cae.Send("EXIT\r\n");
  cae.ExpectBytes("QELM: Bye Bye...\r\n\r");
  cae.ExpectClosed();
  ExpectLog("INF", "connection is closed by command on CAE interface");
  io.Send("going on\r\n");
  mon.ExpectBytes("going on\r\n\r");
  ExpectPortComesBack(kCae);
}

TEST_F(Sessions, ExitFollowedByACloseLeavesThePortAlive) {
  StartDaemon();
  cae = Connect(kCae);
  for (int round = 1; round <= 4; ++round) {
    Client io = Dial(kIo);
    io.ReadUntil("QELM IO interface is ready\r\n\r");
    io.Send("EXIT\r\n");
    if (round % 2 == 0) io.Reset();
    io.Close();
    // The command may come when the port already listens again.
    ExpectLog("INF", "connection is closed by command on IO interface", round);
    ExpectAnswer();  // The close follows its line: it must not meet the next client.
  }
  ExpectPortComesBack(kIo);
}

TEST_F(Sessions, StaleExitLeavesThePortAlive) {
  StartDaemon();
  cae = Connect(kCae);
  Client io = Connect(kIo);
  io.Send("EXIT\r\n");
  io.ReadUntil("Bye Bye...\r\n\r");
  io.Send("EXIT\r\n");
  io.ExpectClosed();
  ExpectAnswer();
  ExpectPortComesBack(kIo);
  ExpectPortComesBack(kIo);
}

TEST_F(Sessions, SecondCaeExitLeavesThePortAlive) {
  StartDaemon();
  cae = Connect(kCae);
  cae.Send("EXIT\r\n");
  cae.ReadUntil("Bye Bye...\r\n\r");
  cae.Send("EXIT\r\n");
  cae.ExpectClosed();
  ExpectPortComesBack(kCae);
  ExpectPortComesBack(kCae);
}

TEST_F(Sessions, DescriptorsAbove1024AreServed) {
  StartDaemon({.extra_descriptors = 1100});
  cae = Connect(kCae);
  Client mon = Connect(kMon);
  Client io = Connect(kIo);
  io.Send("far up\r\n");
  mon.ExpectBytes("far up\r\n\r");
  cae.ExpectBytes("COE:Illegal command -> far up\r\n\r>\r\n\r");
  ExpectAnswer();
}

TEST_F(Sessions, ClientThatStopsReadingHoldsNobodyElseUp) {
  // Small segments keep the socket buffers small, so that they fill soon.
  ASSERT_EQ(std::system("ip link set lo mtu 1500"), 0);
  WriteConfig({.percent = "100", .io_input = "."});
  PlugCard(5, kDigitalOutput);
  StartOnBus();
  Client mon = Connect(kMon);
  Client io = Connect(kIo);
  Flood(io);
  io.Send("a5b0d01.");
  adapter.ExpectFrame({0x10, 5, 2, 0x01, 0xFF});
  ExpectAnswer();
  mon.Reset();
  ExpectPortComesBack(kMon);
  io.Send("a5b0d02.");
  adapter.ExpectFrame({0x10, 5, 2, 0x02, 0xFF});
}

TEST_F(Sessions, DaemonEndsWhileAClientDoesNotRead) {
  ASSERT_EQ(std::system("ip link set lo mtu 1500"), 0);
  WriteConfig({.percent = "100", .io_input = "."});
  PlugCard(5, kDigitalOutput);
  StartOnBus();
  Client mon = Connect(kMon);
  Client io = Connect(kIo);
  Flood(io);
  io.Send("a5b0d01.");
  adapter.ExpectFrame({0x10, 5, 2, 0x01, 0xFF});
  StopDaemon();
}

TEST_F(Sessions, PortListensAgainFourSecondsAfterACloseAndGreetsThreeLater) {
  StartDaemon({.quick = false});
  cae = Connect(kCae);
  const auto begin = steady_clock::now();
  cae.Close();
  ExpectLog("INF", "connection is closed by client on CAE interface");
  // The close follows its line.
  EXPECT_TRUE(WaitUntil([] { return Refuses(kCae); }));
  ExpectLog("INF", "CAE interface listening on port 5001", 2);
  EXPECT_GE(Since(begin), milliseconds(4000));
  cae = Connect(kCae);
  EXPECT_GE(Since(begin), milliseconds(7000));
}

TEST_F(Sessions, ExitAtTheRealPaceClosesAfterASecond) {
  StartDaemon({.quick = false});
  Client io = Connect(kIo);
  const auto begin = steady_clock::now();
  io.Send("EXIT\r\n");
  io.ExpectBytes("QELM: Bye Bye...\r\n\r");
  io.ExpectClosed();
  EXPECT_GE(Since(begin), milliseconds(1000));
  ExpectLog("INF", "IO interface listening on port 5002", 2);
  EXPECT_GE(Since(begin), milliseconds(5000));
}
