// How a message is cut into commands, the block commands, and what is illegal.
#include "support/QelmTest.h"

namespace {

class IoParser : public QelmTest {
 protected:
  void Send(const std::string& message) { EXPECT_TRUE(qelm.ParseOutCommand(List(message))); }

  // The command is answered as illegal and reaches no card.
  void ExpectIllegal(const std::string& command) {
    Send(command);
    EXPECT_EQ(CaeReplies(), (Texts{"COE:Illegal command -> " + command + "\r\n", ">\r\n"}));
    EXPECT_EQ(QueuedFrames(), 0U) << command;
  }

  std::size_t QueuedFrames() const {
    std::size_t frames = 0;
    for (std::size_t i = 0; i < 17; ++i) frames += CardQueue(i).Size();
    return frames;
  }
};

}  // namespace

TEST_F(IoParser, ABlockCommandSendsAllBlocksOfTheCard) {
  PlugCard(5, 0x03);
  Send("a5b1dFB;");
  EXPECT_EQ(CardQueue(5).DeQueue(), List({0x10, 0x05, 0x02, 0xFF, 0xFB}));
  EXPECT_EQ(qelm.Cards[5].BlockData[1], 0xFB);
  EXPECT_EQ(CaeReplies(), Texts());
  EXPECT_EQ(IoOutput(), Texts());
}

TEST_F(IoParser, AServoCardGetsSixBlocks) {
  PlugCard(0, 0x05);
  Send("a0b4d7F;");
  EXPECT_EQ(CardQueue(0).DeQueue(), List({0x10, 0x00, 0x06, 0x80, 0x80, 0x80, 0x80, 0x7F, 0x80}));
}

TEST_F(IoParser, AMotorCardGetsFourBlocks) {
  PlugCard(15, 0x06);
  Send("aFb3d21;aFb5d99;");
  EXPECT_EQ(CardQueue(15).DeQueue(), List({0x10, 0x0F, 0x04, 0x00, 0x00, 0x00, 0x21}));
  EXPECT_EQ(CardQueue(15).DeQueue(), List({0x10, 0x0F, 0x04, 0x00, 0x00, 0x00, 0x21}));
  EXPECT_EQ(qelm.Cards[15].BlockData[5], 0x99);
}

TEST_F(IoParser, ABlockCommandToAnotherCardStoresTheValueAndQueuesAnEmptyFrame) {
  for (const int type : {0x00, 0x04, 0x07, 0x08, 0x09, 0x0A, 0xFF}) {
    PlugCard(3, type);
    Send("a3b0d12;");
    EXPECT_EQ(CardQueue(3).Size(), 1U);
    EXPECT_EQ(CardQueue(3).DeQueue(), QList());
    EXPECT_EQ(qelm.Cards[3].BlockData[0], 0x12);
    qelm.Cards[3].BlockData[0] = 0;
  }
  EXPECT_EQ(CaeReplies(), Texts());
}

TEST_F(IoParser, BlockNumbersAreNotCheckedAgainstTheCard) {
  PlugCard(5, 0x03);
  Send("a5bFd77;");
  EXPECT_EQ(qelm.Cards[5].BlockData[15], 0x77);
  EXPECT_EQ(CardQueue(5).DeQueue(), List({0x10, 0x05, 0x02, 0xFF, 0xFF}));
}

TEST_F(IoParser, DigitsThatAreNoneReadAsZero) {
  PlugCard(0, 0x03);
  Send("agbxdfF;");
  EXPECT_EQ(CardQueue(0).DeQueue(), List({0x10, 0x00, 0x02, 0x0F, 0xFF}));
}

TEST_F(IoParser, AbsentDigitsReadAsZero) {
  PlugCard(5, 0x03);
  for (const char* command : {"a5b1d", "a5b1d0", "a5b1d00", "a5b1d00more"}) {
    qelm.Cards[5].BlockData[1] = 0x55;
    Send(command);
    EXPECT_EQ(CardQueue(5).DeQueue(), List({0x10, 0x05, 0x02, 0xFF, 0x00})) << command;
  }
}

TEST_F(IoParser, AValueOfOneDigitIsTheLowDigit) {
  PlugCard(5, 0x03);
  Send("a5b1dF");
  EXPECT_EQ(CardQueue(5).DeQueue(), List({0x10, 0x05, 0x02, 0xFF, 0x0F}));
  Send("a5b1d1;a5b0d7");
  EXPECT_EQ(CardQueue(5).DeQueue(), List({0x10, 0x05, 0x02, 0xFF, 0x01}));
  EXPECT_EQ(CardQueue(5).DeQueue(), List({0x10, 0x05, 0x02, 0x07, 0x01}));
  Send("a5b0dg");
  EXPECT_EQ(CardQueue(5).DeQueue(), List({0x10, 0x05, 0x02, 0x00, 0x01}));
}

TEST_F(IoParser, EmptyPiecesArePassedOver) {
  PlugCard(5, 0x03);
  for (const char* message : {"a5b0d00;;a5b1d00", ";a5b0d00;a5b1d00;", ";;;a5b0d00;;;a5b1d00;;;"}) {
    Send(message);
    EXPECT_EQ(CardQueue(5).Size(), 2U) << message;
    TakeAll(CardQueue(5));
  }
  Send("");
  Send(";");
  Send(";;");
  EXPECT_EQ(QueuedFrames(), 0U);
  EXPECT_EQ(CaeReplies(), Texts());
}

TEST_F(IoParser, ASeparatorMayHaveSeveralCharacters) {
  qelm.Config.IoDescriptor.InpSeparator = "\r\n";
  PlugCard(5, 0x03);
  Send("a5b0d00\r\na5b1d00\r\n\r\n");
  EXPECT_EQ(CardQueue(5).Size(), 2U);
  Send("a5b0d00\n");
  EXPECT_EQ(CardQueue(5).Size(), 3U);  // what stands behind the digits does not matter
}

TEST_F(IoParser, WithoutASeparatorTheMessageIsOneCommand) {
  qelm.Config.IoDescriptor.InpSeparator = "";
  PlugCard(5, 0x03);
  Send("a5b0d00;a5b1d00\r\n");
  EXPECT_EQ(CardQueue(5).Size(), 1U);
}

TEST_F(IoParser, AMessageEndsAtAZeroByte) {
  PlugCard(5, 0x03);
  Send(std::string("a5b0d00\0;a5b1d00;", 17));
  EXPECT_EQ(CardQueue(5).Size(), 1U);
}

TEST_F(IoParser, TheCommandBehindAnIllegalOneIsServed) {
  PlugCard(5, 0x03);
  Send("nonsense;a5b1d00;");
  EXPECT_EQ(CaeReplies(), (Texts{"COE:Illegal command -> nonsense\r\n", ">\r\n"}));
  EXPECT_EQ(CardQueue(5).Size(), 1U);
}

TEST_F(IoParser, WhatFitsNoPatternIsIllegal) {
  PlugCard(5, 0x03);
  for (const char* command : {"a", "a5", "a5b", "a5b1", "a5b1x00", "A5b1d00", "b5b1d00", "a5B1d00",
                              "a5b1D00", " a5b1d00", "a5x1d00", "HELP", "EXIT", "\r\n"})
    ExpectIllegal(command);
}

TEST_F(IoParser, TheErrorEndsInTheCaeSeparator) {
  qelm.Config.CaeDescriptor.OutSeparator = "|";
  Send("x;");
  EXPECT_EQ(CaeReplies(), (Texts{"COE:Illegal command -> x|", ">|"}));
  EXPECT_EQ(IoOutput(), Texts());
}

TEST_F(IoParser, FramesOfCommandsAreQueuedHoweverManyWait) {
  PlugCard(5, 0x03);
  for (int i = 0; i < 200; ++i) Send("a5b1d00;");
  EXPECT_EQ(CardQueue(5).Size(), 200U);
}
