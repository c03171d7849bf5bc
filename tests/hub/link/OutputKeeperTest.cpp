#include "link/OutputKeeper.h"

#include <gtest/gtest.h>

namespace hub::link {
namespace {

using Commands = OutputKeeper::Commands;
using model::Kind;

class OutputKeeperTest : public testing::Test {
 protected:
  OutputKeeperTest() {
    keeper.SetKind(0x0, Kind::kServo);
    keeper.SetKind(0x3, Kind::kDigitalInput);
    keeper.SetKind(0x4, Kind::kMotor);
    keeper.SetKind(0x5, Kind::kDigitalOutput);
    keeper.NoteDiscovery();
  }

  OutputKeeper keeper;
};

TEST_F(OutputKeeperTest, WhatNobodyAskedForIsNotSent) {
  for (unsigned address = 0; address < 16; ++address) {
    EXPECT_EQ(keeper.Restore(address), Commands{}) << address;
    EXPECT_EQ(keeper.AfterReboot(address), Commands{}) << address;
  }
}

TEST_F(OutputKeeperTest, WhatWasSentIsOnRecord) {
  keeper.NoteAsked({5, 0, 0xFE});
  EXPECT_EQ(keeper.Restore(5), Commands{});
}

TEST_F(OutputKeeperTest, ADiscoveryMakesItSendAgain) {
  keeper.NoteAsked({5, 0, 0xFE});
  keeper.NoteDiscovery();
  EXPECT_EQ(keeper.Restore(5), (Commands{{5, 0, 0xFE}}));
  keeper.NoteAsked({5, 0, 0xFE});
  EXPECT_EQ(keeper.Restore(5), Commands{});
}

TEST_F(OutputKeeperTest, ABlockAtItsStartValueIsRightAsItIs) {
  keeper.NoteAsked({5, 0, 0xFF});
  keeper.NoteAsked({5, 1, 0x7F});
  keeper.NoteAsked({0, 2, 0x80});
  keeper.NoteDiscovery();
  EXPECT_EQ(keeper.Restore(5), (Commands{{5, 1, 0x7F}}));
  EXPECT_EQ(keeper.Restore(0), Commands{});
}

TEST_F(OutputKeeperTest, TheBlockWithTheMostLinesOffGoesFirst) {
  keeper.NoteAsked({5, 0, 0xFE});
  keeper.NoteAsked({5, 1, 0x0F});
  keeper.NoteDiscovery();
  EXPECT_EQ(keeper.Restore(5), (Commands{{5, 1, 0x0F}, {5, 0, 0xFE}}));
}

TEST_F(OutputKeeperTest, ARecordThatNobodyKnowsIsSentWhole) {
  keeper.NoteAsked({5, 0, 0xFF});
  keeper.ForgetRecord();
  EXPECT_EQ(keeper.Restore(5), (Commands{{5, 0, 0xFF}}));
}

TEST_F(OutputKeeperTest, WhatTheStoreRemembersIsSentOnceTheDaemonBeganAnew) {
  keeper.Remember({5, 1, 0x7F});
  EXPECT_EQ(keeper.Asked(5, 1), 0x7F);
  EXPECT_EQ(keeper.Restore(5), (Commands{{5, 1, 0x7F}}));
}

TEST_F(OutputKeeperTest, ARebootedCardNeedsOneCommand) {
  keeper.NoteAsked({0, 0, 0x10});
  keeper.NoteAsked({0, 5, 0x20});
  EXPECT_EQ(keeper.AfterReboot(0), (Commands{{0, 0, 0x10}}));
}

TEST_F(OutputKeeperTest, ACardThatIsNotKeptIsLeftAlone) {
  keeper.SetKept(4, false);
  keeper.NoteAsked({4, 0, 0x90});
  keeper.NoteDiscovery();
  EXPECT_EQ(keeper.Restore(4), Commands{});
  EXPECT_EQ(keeper.AfterReboot(4), Commands{});
  keeper.SetKept(4, true);
  EXPECT_EQ(keeper.Restore(4), (Commands{{4, 0, 0x90}}));
}

// A discovery without force leaves the record of motors as it was.
TEST_F(OutputKeeperTest, AMotorThatMustStandIsToldSoAfterADiscovery) {
  keeper.NoteAsked({4, 0, 0x90});
  keeper.NoteAsked({4, 1, 0x00});
  keeper.NoteDiscovery();
  EXPECT_EQ(keeper.Restore(4), (Commands{{4, 0, 0x90}, {4, 1, 0x00}}));
}

TEST_F(OutputKeeperTest, ACommandForACardThatIsNotKeptTakesNothingAlong) {
  keeper.SetKept(4, false);
  keeper.NoteAsked({4, 0, 0x90});
  keeper.ForgetRecord();
  EXPECT_EQ(keeper.Complete({4, 1, 0x10}), (Commands{{4, 1, 0x10}}));
}

TEST_F(OutputKeeperTest, ACardThatIsNotKeptGoesBackToItsStartWithTheNextFrame) {
  keeper.SetKept(5, false);
  keeper.NoteAsked({5, 0, 0xFC});
  keeper.NoteAsked({5, 1, 0x7F});
  EXPECT_EQ(keeper.TakeFrame(5), Commands{});
  keeper.NoteDiscovery();
  EXPECT_EQ(keeper.Asked(5, 0), 0xFF);
  EXPECT_EQ(keeper.Complete({5, 1, 0x3F}), (Commands{{5, 1, 0x3F}}));
  keeper.NoteAsked({5, 1, 0x3F});
  EXPECT_EQ(keeper.TakeFrame(5), (Commands{{5, 0, 0xFF}}));
  EXPECT_EQ(keeper.TakeFrame(5), Commands{});
}

TEST_F(OutputKeeperTest, OnlyAForcedDiscoveryPutsMotorsBackForCertain) {
  keeper.SetKept(4, false);
  keeper.NoteAsked({4, 0, 0x64});
  keeper.NoteAsked({4, 1, 0x78});
  keeper.NoteDiscovery();
  EXPECT_EQ(keeper.Asked(4, 1), 0x78);
  EXPECT_EQ(keeper.TakeFrame(4), Commands{});
  keeper.NoteDiscovery(true);
  keeper.NoteAsked({4, 0, 0x6E});
  EXPECT_EQ(keeper.TakeFrame(4), (Commands{{4, 1, 0x00}}));
}

TEST_F(OutputKeeperTest, AKeptCardGoesBackToNothing) {
  keeper.NoteAsked({5, 0, 0xFC});
  keeper.NoteDiscovery();
  keeper.NoteAsked({5, 1, 0x7F});
  EXPECT_EQ(keeper.TakeFrame(5), Commands{});
  EXPECT_EQ(keeper.Asked(5, 0), 0xFC);
}

// The record still has what was sent before: the other blocks are told what the card shows.
TEST_F(OutputKeeperTest, ARebootedCardThatIsNotKeptStartsNothingByItself) {
  keeper.SetKept(4, false);
  for (uint8_t block = 0; block < 4; ++block) keeper.NoteAsked({4, block, 0x00});
  keeper.NoteAsked({4, 1, 0x78});
  keeper.NoteReboot(4);
  EXPECT_EQ(keeper.Asked(4, 1), 0x00);
  EXPECT_EQ(keeper.AfterReboot(4), Commands{});
  EXPECT_EQ(keeper.Complete({4, 0, 0x6E}), (Commands{{4, 1, 0x00}, {4, 0, 0x6E}}));
  keeper.NoteAsked({4, 1, 0x00});
  keeper.NoteAsked({4, 0, 0x6E});
  EXPECT_EQ(keeper.Complete({4, 2, 0x10}), (Commands{{4, 2, 0x10}}));
}

TEST_F(OutputKeeperTest, ACardOfAnotherKindForgets) {
  keeper.NoteAsked({5, 0, 0xFE});
  keeper.SetKind(5, Kind::kServo);
  keeper.NoteDiscovery();
  EXPECT_EQ(keeper.Restore(5), Commands{});
  EXPECT_EQ(keeper.Asked(5, 0), std::nullopt);
}

TEST_F(OutputKeeperTest, ABlockThatTheCardDoesNotHaveIsPassedOver) {
  keeper.NoteAsked({5, 2, 0x00});
  keeper.NoteAsked({3, 0, 0x00});
  keeper.Remember({4, 4, 0x00});
  keeper.NoteDiscovery();
  for (const unsigned address : {3U, 4U, 5U}) EXPECT_EQ(keeper.Restore(address), Commands{});
  EXPECT_EQ(keeper.Asked(5, 15), std::nullopt);
}

TEST_F(OutputKeeperTest, WithoutARecordACommandTakesTheOtherBlocksAlong) {
  keeper.NoteAsked({5, 0, 0xFE});
  EXPECT_EQ(keeper.Complete({5, 1, 0x7F}), (Commands{{5, 1, 0x7F}}));
  keeper.ForgetRecord();
  EXPECT_EQ(keeper.Complete({5, 1, 0x7F}), (Commands{{5, 0, 0xFE}, {5, 1, 0x7F}}));
}

}  // namespace
}  // namespace hub::link
