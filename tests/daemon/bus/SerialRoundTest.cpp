// The rounds: which frame goes when, the polls, and the link that is lost.
#include "kit/SleepControl.h"
#include "support/SerialTest.h"

namespace {

class SerialRound : public SerialTest {
 protected:
  // The next round opens the link.
  void ExpectCheck() { bus.ExpectFrame(List({0x40, 0x6F, 0x9A})).Reply(List("Xv1.2 and more")); }

  void Acknowledge(const QList& payload) { bus.ExpectFrame(payload).Reply(List("A")); }
};

}  // namespace

TEST_F(SerialRound, ThreeFramesOfOneQueueTakeThreeRounds) {
  Connect();
  for (int i = 1; i <= 3; ++i) Queue(5).ToQueue(List({0x10, i}));
  for (int i = 1; i <= 3; ++i) {
    Acknowledge(List({0x10, i}));
    Round();
    EXPECT_EQ(Queue(5).Size(), static_cast<std::size_t>(3 - i));
  }
}

TEST_F(SerialRound, ServesTheQueuesInOrderAndTheDriverQueueLast) {
  Connect();
  for (int i = 16; i >= 0; --i) Queue(static_cast<std::size_t>(i)).ToQueue(List({0x50, i}));
  for (int i = 0; i <= 16; ++i) Acknowledge(List({0x50, i}));
  Round();
}

TEST_F(SerialRound, AnEmptyFrameIsConsumedWithoutAWrite) {
  Connect();
  Queue(3).ToQueue({});
  Queue(4).ToQueue(List({0x10, 4}));
  Acknowledge(List({0x10, 4}));
  Round();
  EXPECT_TRUE(Queue(3).IsEmpty());
  EXPECT_EQ(serial.LinkState, 3);
}

TEST_F(SerialRound, APollQueuedInOneRoundIsSentInTheNext) {
  Connect();
  serial.EnablePoll = 1;
  cards[3].setCardData(0x04, 3);
  Round();
  EXPECT_EQ(Queue(3).Size(), 1U);
  bus.ExpectFrame(List({0x20, 0x03, 0x02})).Reply(List({'!', 3, 0x40, 0}));
  Round();
  EXPECT_EQ(TakeReports(), Texts{"a3b0d40"});
  EXPECT_EQ(Queue(3).Size(), 1U);
}

TEST_F(SerialRound, PollsOnlyInputCardsWhosePollingIsOn) {
  Connect();
  serial.EnablePoll = 1;
  cards[0].setCardData(0x03, 0);
  cards[0].PollEnabled = 1;
  cards[1].setCardData(0x07, 1);
  cards[2].setCardData(0x08, 2);
  cards[2].PollEnabled = 0;
  cards[15].setCardData(0x08, 15);
  cards[16].setCardData(0x08, 16);
  Round();
  for (std::size_t i = 0; i < 17; ++i) EXPECT_EQ(Queue(i).Size(), i == 1 || i == 15 ? 1U : 0U) << i;
}

TEST_F(SerialRound, WithoutThePollFlagNothingIsPolled) {
  Connect();
  cards[1].setCardData(0x07, 1);
  Round();
  EXPECT_TRUE(Queue(1).IsEmpty());
}

TEST_F(SerialRound, AQueueOf64EntriesGetsNoFurtherPoll) {
  serial.DeviceName = "/nonexistent";
  serial.EnablePoll = 1;
  cards[3].setCardData(0x04, 3);
  for (int i = 0; i < 63; ++i) Queue(3).ToQueue(List({0x10}));
  Round();
  EXPECT_EQ(Queue(3).Size(), 64U);
  Round();
  EXPECT_EQ(Queue(3).Size(), 64U);
}

TEST_F(SerialRound, OpensAClosedLinkAndLogsTheVersion) {
  ExpectCheck();
  Round();
  EXPECT_EQ(serial.LinkState, 3);
  EXPECT_EQ(log.Lines(), (Texts{"[INF] try to catch hardware on " + bus.Device(),
                                "[INF] hardware found on " + bus.Device() + " version: v1.2"}));
}

TEST_F(SerialRound, DiscoversInTheRoundThatOpensTheLink) {
  const SleepRecord sleeps;
  serial.AutoDiscover = 1;
  ExpectCheck();
  bus.ExpectFrame(List({0x30})).Reply(List({'1', 0x04}));
  Round();
  EXPECT_EQ(cards[0].Name(), "16 channel DIGITAL INPUT");
  EXPECT_EQ(sleeps.Seconds(), Texts{"1"});
}

TEST_F(SerialRound, WithoutAutoDiscoverTheOpenedLinkGoesStraightOn) {
  const SleepRecord sleeps;
  Queue(2).ToQueue(List({0x10, 2}));
  ExpectCheck();
  Acknowledge(List({0x10, 2}));
  Round();
  EXPECT_EQ(sleeps.Seconds(), Texts());
}

TEST_F(SerialRound, ALinkThatDoesNotOpenIsTriedAgainTwoSecondsLater) {
  const SleepRecord sleeps;
  Queue(2).ToQueue(List({0x10, 2}));
  serial.DeviceName = "/nonexistent";
  Round();
  Round();
  EXPECT_EQ(serial.LinkState, 0);
  EXPECT_EQ(sleeps.Seconds(), (Texts{"2", "2"}));
  EXPECT_EQ(log.Count("[ERR] unable to open /nonexistent for hardware communication"), 2);
  EXPECT_EQ(Queue(2).Size(), 1U);
}

TEST_F(SerialRound, ATimeoutClosesTheLinkAndEndsTheRound) {
  Connect();
  Queue(2).ToQueue(List({0x10, 2}));
  Queue(2).ToQueue(List({0x10, 22}));
  Queue(3).ToQueue(List({0x10, 3}));
  bus.ExpectFrame(List({0x10, 2}));
  Round();
  EXPECT_EQ(serial.LinkState, 0);
  EXPECT_FALSE(serial.Fd.IsOpen());
  EXPECT_EQ(log.Lines(), Texts{"[INF] comm timeout " + bus.Device()});
  EXPECT_EQ(Queue(2).Size(), 1U);  // the frame itself is lost
  EXPECT_EQ(Queue(3).Size(), 1U);
}

TEST_F(SerialRound, AfterATimeoutTheNextRoundOpensAgainAndSendsTheRest) {
  Connect();
  Queue(2).ToQueue(List({0x10, 2}));
  Queue(3).ToQueue(List({0x10, 3}));
  bus.ExpectFrame(List({0x10, 2}));
  Round();
  ExpectCheck();
  Acknowledge(List({0x10, 3}));
  Round();
  EXPECT_EQ(serial.LinkState, 3);
}

TEST_F(SerialRound, PollsAreQueuedAlsoInARoundThatLostTheLink) {
  Connect();
  serial.EnablePoll = 1;
  cards[3].setCardData(0x04, 3);
  Queue(2).ToQueue(List({0x10, 2}));
  bus.ExpectFrame(List({0x10, 2}));
  Round();
  EXPECT_EQ(Queue(3).Size(), 1U);
}

TEST_F(SerialRound, ALinkThatIsWithdrawnTimesOut) {
  Connect();
  serial.Fd.Withdraw();
  Queue(2).ToQueue(List({0x10, 2}));
  Round();
  EXPECT_EQ(serial.LinkState, 0);
  EXPECT_EQ(log.Lines(), Texts{"[INF] comm timeout " + bus.Device()});
}
