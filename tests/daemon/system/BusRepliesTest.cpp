// Replies of the adapter that are late, cut, odd or too long.
#include "DaemonTest.h"

namespace {

class BusReplies : public DaemonTest {
 protected:
  // An IO client listens; polls are not running yet.
  void StartWith(int address, std::uint8_t kind) {
    PlugCard(address, kind);
    StartOnBus();
    io = Connect(kIo);
  }

  // The polls get these replies, then plain acknowledgements for ever.
  void Poll(std::vector<Reply> replies) {
    const int count = static_cast<int>(replies.size());
    adapter.Script({0x20}, std::move(replies));
    adapter.Always({0x20}, Packet({'A'}));
    Command("ENABLEPOLL", "CIA: GLOBAL POLLING IS ENABLED\r\n\r");
    adapter.ExpectCount({0x20}, count + 1);
    Command("DISABLEPOLL", "CIA: GLOBAL POLLING IS DISABLED\r\n\r");
  }

  // The link is as it was, and a report shows that none came before it.
  void ExpectNextReport(const std::string& report, Place place = Place::current()) {
    io.ExpectBytes(report, place);
    ExpectAnswer(place);
    EXPECT_EQ(CountLogged("[INF] comm timeout /dev/ttyUSB0"), 0);
  }

  Client io;
};

}  // namespace

TEST_F(BusReplies, ReplyInPiecesIsOneReply) {
  StartWith(3, kDigitalInput);
  Poll({InPieces({'!', 3, 0x12, 0x34})});
  ExpectNextReport("a3b0d12\r\n\ra3b1d34\r\n\r");
}

TEST_F(BusReplies, BytesBehindAReplyAreDropped) {
  StartWith(3, kDigitalInput);
  Poll({Raw({4, '!', 3, 0x12, 0x00, 4, '!', 3, 0x77, 0x77}), Packet({'!', 3, 0x12, 0x01})});
  ExpectNextReport("a3b0d12\r\n\ra3b1d01\r\n\r");
}

TEST_F(BusReplies, StaleBytesAreDroppedBeforeTheNextFrame) {
  StartWith(3, kDigitalInput);
  adapter.Send({4, '!', 3, 0x66, 0x66});
  Poll({Packet({'!', 3, 0x12, 0x00})});
  ExpectNextReport("a3b0d12\r\n\r");
}

TEST_F(BusReplies, LateReplyIsNotTakenForTheNext) {
  StartWith(3, kDigitalInput);
  adapter.Pull();
  Command("REBOOT:3", "CIE: BUS WRITE ERROR\r\n\r");
  ExpectLog("ERR", "ttyUSB devices couldn't be found");
  adapter.ForgetFrames();
  adapter.Send({2, 'Q', 3});
  adapter.Plug();
  ExpectLog("INF", "hardware found on /dev/ttyUSB0 version: v1.2", 2);
  adapter.ExpectFrames({{0x40, 0x6F, 0x9A}, {0x30}});
  Command("REBOOT:3", "CIA: Card is REBOOTED\r\n\rRBT:0x3:OK\r\n\r");
}

TEST_F(BusReplies, HalfAReplyIsATimeOut) {
  StartWith(5, kDigitalOutput);
  adapter.Script({0x10}, {Raw({4, 'A', 'B'})});
  io.Send("a5b0d01\r\n");
  ExpectLog("INF", "comm timeout /dev/ttyUSB0");
  ExpectLog("INF", "hardware found on /dev/ttyUSB0 version: v1.2", 2);
}

TEST_F(BusReplies, ErrorRepliesAreDiscarded) {
  StartWith(3, kDigitalInput);
  Poll({Packet({}), Packet({0x12, 3, 1, 1}), Packet({'#', 3, 1, 1}), Packet({'$', 3, 1, 1}),
        Packet({'N', 3, 1, 1}), Packet({'B', 3, 1, 1}), Packet({'C', 3, 1, 1}),
        Packet({'?', 3, 1, 1}), Packet({'!', 3, 0x00, 0x01})});
  ExpectNextReport("a3b1d01\r\n\r");
}

TEST_F(BusReplies, ReplyThatBeginsWithTIsTakenForATimeOut) {
  StartWith(5, kDigitalOutput);
  adapter.Script({0x10}, {Packet({'T', 'x'})});
  io.Send("a5b0d01\r\n");
  ExpectLog("INF", "comm timeout /dev/ttyUSB0");
  ExpectLog("INF", "hardware found on /dev/ttyUSB0 version: v1.2", 2);
}

TEST_F(BusReplies, RepliesWithoutAGoodAddressAreDiscarded) {
  StartWith(3, kDigitalInput);
  Poll({Packet({'!'}), Packet({'Q'}), Packet({'!', 16, 1, 1}), Packet({'Q', 16}),
        Packet({'!', 255, 1, 1}), Packet({'Q', 255, 1, 1}), Packet({'!', 3, 0x00, 0x01})});
  ExpectNextReport("a3b1d01\r\n\r");
}

TEST_F(BusReplies, AbsentBytesOfADigitalReplyAreSkipped) {
  StartWith(3, kDigitalInput);
  Poll({Packet({'!', 3, 0x11, 0x22}), Packet({'!', 3}), Packet({'!', 3, 0x12})});
  ExpectNextReport("a3b0d11\r\n\ra3b1d22\r\n\ra3b0d12\r\n\r");
}

TEST_F(BusReplies, AbsentBytesOfAKeyReplyAreSkipped) {
  StartWith(8, kKeyMatrix);
  Poll({Packet({'!', 8, 0x11}), Packet({'!', 8}), Packet({'!', 8, 0x12})});
  ExpectNextReport("a8b0d11\r\n\ra8b0d12\r\n\r");
}

TEST_F(BusReplies, AbsentBytesOfAnAnalogueReplyReadAsZero) {
  StartWith(7, kAnalogueInput);
  const Reply whole = Packet({'!', 7, 60, 60, 60, 60, 60, 60});
  Poll({whole, whole, whole, Packet({'!', 7, 60, 60}), Packet({'!', 7, 60}), Packet({'!', 7}),
        whole});
  // 5, 4 and 3 of 6 samples are 60
  ExpectNextReport(
      "a7b0d32\r\n\ra7b1d28\r\n\ra7b2d1E\r\n\ra7b3d1E\r\n\ra7b4d1E\r\n\ra7b5d1E\r\n\r");
}

TEST_F(BusReplies, RepliesOfOutputAndEmptyCardsAreIgnored) {
  StartWith(3, kDigitalInput);
  Poll({Packet({'!', 5, 1, 1}), Packet({'!', 0, 1, 1}), Packet({'!', 3, 0x00, 0x01})});
  ExpectNextReport("a3b1d01\r\n\r");
}

TEST_F(BusReplies, LongReplyIsReadToItsEnd) {
  StartWith(3, kDigitalInput);
  Poll({Packet(Bytes{'!', 3, 0x10} + Bytes(252, 0x55)), Packet(Bytes(255, 'Q')),
        Packet({'!', 3, 0x10, 0x56})});
  ExpectNextReport("a3b0d10\r\n\ra3b1d55\r\n\ra3b1d56\r\n\r");
}

TEST_F(BusReplies, LongReplyInPiecesIsReadToItsEnd) {
  StartWith(3, kDigitalInput);
  Poll({InPieces(Bytes{'!', 3, 0x10} + Bytes(252, 0x55)), Packet({'!', 3, 0x10, 0x56})});
  ExpectNextReport("a3b0d10\r\n\ra3b1d55\r\n\ra3b1d56\r\n\r");
}

TEST_F(BusReplies, ShortDiscoveryReplyLeavesTheRestEmpty) {
  StartWith(3, kDigitalInput);
  adapter.Script({0x30}, {Packet({'1', 0x03, 0x09})});
  cae.Send("FORCEDISCOVER\r\n");
  cae.ExpectBytes(
      "FORCED DISCOVER LIST:\r\n\rDTI:0x0:16 channel DIGITAL OUTPUT\r\n\r"
      "DTI:0x1:ALPHANUMERIC LCD CONTROLLER\r\n\rDTI:0x2:EMPTY\r\n\rDTI:0x3:EMPTY\r\n\r");
  cae.ReadUntil("DTI:0xF:EMPTY\r\n\r>\r\n\r");
}

TEST_F(BusReplies, AnswerToARequestReportsTheLastChangeAgain) {
  StartWith(3, kDigitalInput);
  Poll({Packet({'!', 3, 0x40, 0x00})});
  io.ExpectBytes("a3b0d40\r\n\r");
  Command("REBOOT:3", "CIA: Card is REBOOTED\r\n\rRBT:0x3:OK\r\n\r");
  io.ExpectBytes("a3b0d40\r\n\r");
}

TEST_F(BusReplies, UnaskedPollReplyOfAnotherCardCounts) {
  PlugCard(4, kDigitalInput);
  StartWith(3, kDigitalInput);
  Command("POLLOFF:4", "CIA: POLLOFF is OK at address 4\r\n\r");
  Poll({Packet({'!', 4, 0x0F, 0x00})});
  ExpectNextReport("a4b0d0F\r\n\r");
}
