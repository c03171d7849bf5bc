// One interface as a server: greetings, items as they are read and written.
#include <algorithm>
#include <filesystem>

#include "DaemonTest.h"
#include "kit/Proc.h"

namespace {

class Sockets : public DaemonTest {
 protected:
  void SetUp() override {
    DaemonTest::SetUp();
    StartDaemon();
  }

  // An item that no CAE command matches.
  static constexpr char kUnknown[] = "CIE: UNKNOWN COMMAND \r\n>\r\n\r";
};

}  // namespace

TEST_F(Sockets, CaeGreets) {
  Client(kCae).ExpectBytes("QELM CAE interface is ready\r\n(Type HELP for help)\r\n>\r\n\r");
}

TEST_F(Sockets, IoGreets) { Client(kIo).ExpectBytes("QELM IO interface is ready\r\n\r"); }

TEST_F(Sockets, MonGreets) { Client(kMon).ExpectBytes("QELM MON interface is ready\r\n\r"); }

TEST_F(Sockets, PortsAreOpenOnEveryAddress) {
  Client(kIo, 0, "127.8.9.10").ExpectBytes("QELM IO interface is ready\r\n\r");
}

TEST_F(Sockets, PeerIsLoggedWithItsPortBytesSwapped) {
  Client io(kIo, 5000);
  ExpectLog("INF", "client is connected on IO interface from 127.0.0.1:34835");
}

TEST_F(Sockets, ItemsAreWrittenWithOneCarriageReturnMore) {
  cae = Connect(kCae);
  cae.Send("DRVVER\r\n");
  cae.ExpectBytes("CIA: DRIVER VERSION 1.20\r\n\r>\r\n\r");
}

TEST_F(Sockets, LinesAreHandedOnAsTheyAreSent) {
  Client mon = Connect(kMon);
  Client io = Connect(kIo);
  io.Send("  any text\t \r\n");
  mon.ExpectBytes("  any text\t \r\n\r");
}

TEST_F(Sockets, LineInTwoPiecesIsTwoItems) {
  cae = Connect(kCae);
  cae.Send("DRV");
  cae.ExpectBytes(kUnknown);
  cae.Send("VER\r\n");
  cae.ExpectBytes(kUnknown);
}

TEST_F(Sockets, TwoLinesInOnePieceAreOneItem) {
  cae = Connect(kCae);
  cae.Send("DRVVER\r\nDRVVER\r\n");
  cae.ExpectBytes(kUnknown);
  ExpectAnswer();
}

TEST_F(Sockets, BurstIsCutAt255Bytes) {
  Client mon = Connect(kMon);
  Client io = Connect(kIo);
  io.Send(std::string(255, 'x') + std::string(45, 'y'));
  mon.ExpectBytes(std::string(255, 'x') + "\r" + std::string(45, 'y') + "\r");
}

TEST_F(Sockets, ItemEndsAtItsFirstZeroByte) {
  cae = Connect(kCae);
  cae.Send(std::string("DRVVER\r\n\0REBOOT:0\r\n", 18));
  cae.ExpectBytes("CIA: DRIVER VERSION 1.20\r\n\r>\r\n\r");
}

TEST_F(Sockets, ZeroByteAloneIsAnEmptyItem) {
  cae = Connect(kCae);
  cae.Send(std::string("\0DRVVER\r\n", 9));
  cae.ExpectBytes(kUnknown);
  Client mon = Connect(kMon);
  Client io = Connect(kIo);
  io.Send(std::string("\0", 1));
  mon.ExpectBytes("\r");
}

TEST_F(Sockets, EveryByteValueIsSurvived) {
  std::string bytes;
  for (int value = 255; value >= 0; --value) bytes += static_cast<char>(value);
  Client mon = Connect(kMon);
  Client io = Connect(kIo);
  io.Send(bytes);
  mon.ExpectBytes(bytes.substr(0, 255) + "\r\r");
  mon.Send(bytes);
  cae = Dial(kCae);
  cae.ReadUntil("QELM CAE interface is ready\r\n(Type HELP for help)\r\n>\r\n\r");
  cae.Send(bytes);
  cae.ExpectBytes(kUnknown);  // 255 bytes
  cae.ExpectBytes(kUnknown);  // the zero byte
  ExpectAnswer();
}

TEST_F(Sockets, MonListensToNothing) {
  Client mon = Connect(kMon);
  cae = Connect(kCae);
  mon.Send("EXIT\r\n");
  mon.Send("DRVVER\r\n");
  ExpectAnswer();
  Client io = Connect(kIo);
  io.Send("still here\r\n");
  mon.ExpectBytes("still here\r\n\r");
}

TEST_F(Sockets, SecondClientGetsNoGreetingAndIsDroppedWithTheSession) {
  Client first = Connect(kIo);
  Client second(kIo);
  cae = Connect(kCae);
  ExpectAnswer();
  second.ExpectSilence();
  first.Close();
  second.ExpectClosed();
  Connect(kIo);
  ExpectAnswer();
}

TEST_F(Sockets, EveryDescriptorIsCloseOnExec) {
  cae = Connect(kCae);
  Client io = Connect(kIo);
  ExpectAnswer();
  for (int fd = 3; fd < 64; ++fd) {
    const std::string info = daemon.Proc("fdinfo/" + std::to_string(fd));
    const std::size_t flags = info.find("flags:");
    std::error_code gone;
    const auto target =
        std::filesystem::read_symlink(ProcPath(daemon.Pid(), "fd/" + std::to_string(fd)), gone);
    // popen closes its own pipes in later children, and marks none of them.
    if (flags == std::string::npos || target.string().starts_with("pipe:")) continue;
    EXPECT_TRUE(std::strtol(info.c_str() + flags + 6, nullptr, 8) & 02000000) << target;
  }
}
