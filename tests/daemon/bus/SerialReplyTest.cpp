// What the replies do to the card table and to the reports.
#include "bus/ReplyError.h"
#include "support/SerialTest.h"

namespace {

class SerialReply : public SerialTest {
 protected:
  SerialReply() { Connect(); }
};

}  // namespace

TEST(ReplyError, SortsRepliesByTheirFirstByte) {
  EXPECT_EQ(GetQListError({}), 5);
  EXPECT_EQ(GetQListError(List("TME")), 1);
  EXPECT_EQ(GetQListError(List({0x54})), 1);
  EXPECT_EQ(GetQListError(List({0x12})), 2);
  EXPECT_EQ(GetQListError(List("#")), 3);
  EXPECT_EQ(GetQListError(List("$")), 3);
  EXPECT_EQ(GetQListError(List("N")), 4);
  EXPECT_EQ(GetQListError(List("B")), 6);
  EXPECT_EQ(GetQListError(List("C")), 6);
}

TEST(ReplyError, EveryOtherFirstByteIsAGoodReply) {
  for (const int first : {0x00, 0x11, 0x21, 0x31, 0x41, 0x44, 0x4C, 0x51, 0xD4, 0xFF})
    EXPECT_EQ(GetQListError(List({first, 'T'})), 0) << first;
}

TEST_F(SerialReply, ADiscoveryReplySetsAllSixteenCards) {
  RoundWithReply(16, List({'1', 0x03, 0x04, 0x05, 0x06, 0x07, 0x08, 0x09, 0x0A, 0xFF, 0x00, 0x01,
                           0x03, 0x03, 0x03, 0x03, 0x0A}));
  EXPECT_EQ(cards[0].Name(), "16 channel DIGITAL OUTPUT");
  EXPECT_EQ(cards[1].Name(), "16 channel DIGITAL INPUT");
  EXPECT_EQ(cards[1].CopyPollFrame(), List({0x20, 0x01, 0x02}));
  EXPECT_EQ(cards[4].CopyPollFrame(), List({0x20, 0x04, 0x06}));
  EXPECT_EQ(cards[8].Name(), "CARD?");
  EXPECT_EQ(cards[9].Name(), "EMPTY");
  EXPECT_EQ(cards[10].Name(), "UNIDENTIFIED");
  EXPECT_EQ(cards[15].Name(), "IR REMOTE CONTROLLER");
  EXPECT_EQ(cards[15].Address, 15);
  EXPECT_EQ(cards[16].Name(), "EMPTY");
  EXPECT_EQ(cards[16].IoKind, 3);
}

TEST_F(SerialReply, AShortDiscoveryReplyLeavesTheOtherAddressesEmpty) {
  cards[2].setCardData(0x03, 2);
  RoundWithReply(16, List({'1', 0x03, 0x09}));
  EXPECT_EQ(cards[0].Name(), "16 channel DIGITAL OUTPUT");
  EXPECT_EQ(cards[1].Name(), "ALPHANUMERIC LCD CONTROLLER");
  EXPECT_EQ(cards[2].Name(), "EMPTY");
  EXPECT_EQ(cards[15].Name(), "EMPTY");
}

TEST_F(SerialReply, ASecondDiscoveryDoublesThePoll) {
  RoundWithReply(16, List({'1', 0x04}));
  RoundWithReply(16, List({'1', 0x04}));
  EXPECT_EQ(cards[0].CopyPollFrame(), List({0x20, 0x00, 0x02, 0x20, 0x00, 0x02}));
}

TEST_F(SerialReply, AnUnchangedInputReportsNothing) {
  cards[3].setCardData(0x04, 3);
  RoundWithReply(3, List({'!', 3, 0, 0}));
  EXPECT_EQ(TakeReports(), Texts());
}

TEST_F(SerialReply, AChangeInBlockOneReportsBlockOne) {
  cards[3].setCardData(0x04, 3);
  RoundWithReply(3, List({'!', 3, 0, 0x40}));
  EXPECT_EQ(TakeReports(), Texts{"a3b1d40"});
  RoundWithReply(3, List({'!', 3, 0, 0x40}));
  EXPECT_EQ(TakeReports(), Texts());
}

TEST_F(SerialReply, EveryChangedBlockIsOneReport) {
  cards[15].setCardData(0x04, 15);
  RoundWithReply(15, List({'!', 15, 0x0A, 0xFF}));
  EXPECT_EQ(TakeReports(), (Texts{"aFb0d0A", "aFb1dFF"}));
}

TEST_F(SerialReply, TheReplyNamesItsCardWhateverQueueAsked) {
  cards[7].setCardData(0x08, 7);
  RoundWithReply(3, List({'!', 7, 0x31}));
  EXPECT_EQ(TakeReports(), Texts{"a7b0d31"});
}

TEST_F(SerialReply, AnAnalogueInputReportsFromItsSeventhReply) {
  cards[15].setCardData(0x07, 15);
  for (int i = 0; i < 6; ++i) RoundWithReply(15, List({'!', 15, 0x80, 1, 2, 3, 4, 5}));
  EXPECT_EQ(TakeReports(), Texts());
  RoundWithReply(15, List({'!', 15, 0, 0, 0, 0, 0, 0}));
  EXPECT_EQ(TakeReports(),
            (Texts{"aFb0d80", "aFb1d01", "aFb2d02", "aFb3d03", "aFb4d04", "aFb5d05"}));
}

TEST_F(SerialReply, AQueryReplyIsFiled) {
  cards[2].QueryReply.fill(0x77);
  RoundWithReply(16, List({'Q', 2, 0x40, 0x7F}));
  EXPECT_EQ(cards[2].QueryReply[0], 'Q');
  EXPECT_EQ(cards[2].QueryReply[1], 2);
  EXPECT_EQ(cards[2].QueryReply[3], 0x7F);
  EXPECT_EQ(cards[2].QueryReply[4], 0);
  EXPECT_EQ(TakeReports(), Texts());
}

TEST_F(SerialReply, AQueryReplyReportsTheLastPollsChangesAgain) {
  cards[3].setCardData(0x04, 3);
  RoundWithReply(3, List({'!', 3, 0x01, 0}));
  EXPECT_EQ(TakeReports(), Texts{"a3b0d01"});
  RoundWithReply(16, List({'Q', 3}));
  EXPECT_EQ(TakeReports(), Texts{"a3b0d01"});
}

TEST_F(SerialReply, AnAddressThatIsAbsentOrAbove15IsDiscarded) {
  for (PERIFCARD& card : cards) card.setCardData(0x04, 0);
  for (const QList& reply : {List({'Q'}), List({'!'}), List({'Q', 16}), List({'!', 16, 1, 1}),
                             List({'Q', 255}), List({'!', 255, 1, 1})})
    RoundWithReply(0, reply);
  EXPECT_EQ(TakeReports(), Texts());
  for (const PERIFCARD& card : cards) {
    EXPECT_EQ(card.QueryReply[0], 0);
    EXPECT_EQ(card.BlockData[0], 0);
  }
  EXPECT_EQ(serial.LinkState, 3);
}

TEST_F(SerialReply, ShortPollRepliesAreHarmless) {
  cards[1].setCardData(0x04, 1);
  cards[2].setCardData(0x08, 2);
  cards[3].setCardData(0x07, 3);
  for (int i = 0; i < 7; ++i)
    for (int address = 1; address < 4; ++address)
      RoundWithReply(static_cast<std::size_t>(address), List({'!', address}));
  EXPECT_EQ(TakeReports(), Texts());
}

TEST_F(SerialReply, OtherRepliesAreIgnored) {
  cards[0].setCardData(0x04, 0);
  for (const QList& reply :
       {List({0x00}), List({'A', 0, 1, 1}), List({0x12, 0, 1}), List({'#', 0, 1}), List({'$'}),
        List({'N'}), List({'B'}), List({'C'}), QList()})
    RoundWithReply(0, reply);
  EXPECT_EQ(TakeReports(), Texts());
  EXPECT_EQ(serial.LinkState, 3);
  EXPECT_EQ(log.Lines(), Texts());
}

TEST_F(SerialReply, AReplyThatBeginsLikeATimeoutIsOne) {
  RoundWithReply(0, List("Thanks"));
  EXPECT_EQ(serial.LinkState, 0);
  EXPECT_EQ(log.Lines(), Texts{"[INF] comm timeout " + bus.Device()});
}
