// The rounds: which frame goes when, the polls, and the link that is lost.
#include "support/SerialTest.h"
#include "kit/SleepControl.h"

namespace {

class SerialRound : public SerialTest {
 protected:
  // The next round opens the link.
  void ExpectCheck() {
    Bus.ExpectFrame(Bytes({0x40, 0x6F, 0x9A})).Reply(TextBytes("Xv1.2 and more"));
  }

  void Acknowledge(const QList& payload) { Bus.ExpectFrame(payload).Reply(TextBytes("A")); }
};

}  // namespace

TEST_F(SerialRound, ThreeFramesOfOneQueueTakeThreeRounds) {
  Connect();
  for (int i = 1; i <= 3; ++i) Queue(5).ToQueue(Bytes({0x10, i}));
  for (int i = 1; i <= 3; ++i) {
    Acknowledge(Bytes({0x10, i}));
    Round();
    EXPECT_EQ(Queue(5).Size(), static_cast<std::size_t>(3 - i));
  }
}

TEST_F(SerialRound, ServesTheQueuesInOrderAndTheDriverQueueLast) {
  Connect();
  for (int i = 16; i >= 0; --i) Queue(static_cast<std::size_t>(i)).ToQueue(Bytes({0x50, i}));
  for (int i = 0; i <= 16; ++i) Acknowledge(Bytes({0x50, i}));
  Round();
}

TEST_F(SerialRound, AnEmptyFrameIsConsumedWithoutAWrite) {
  Connect();
  Queue(3).ToQueue({});
  Queue(4).ToQueue(Bytes({0x10, 4}));
  Acknowledge(Bytes({0x10, 4}));
  Round();
  EXPECT_TRUE(Queue(3).IsEmpty());
  EXPECT_EQ(Serial.LinkState, 3);
}

TEST_F(SerialRound, APollQueuedInOneRoundIsSentInTheNext) {
  Connect();
  Serial.EnablePoll = 1;
  Cards[3].setCardData(0x04, 3);
  Round();
  EXPECT_EQ(Queue(3).Size(), 1U);
  Bus.ExpectFrame(Bytes({0x20, 0x03, 0x02})).Reply(Bytes({'!', 3, 0x40, 0}));
  Round();
  EXPECT_EQ(TakeReports(), Texts{"a3b0d40"});
  EXPECT_EQ(Queue(3).Size(), 1U);
}

TEST_F(SerialRound, PollsOnlyInputCardsWhosePollingIsOn) {
  Connect();
  Serial.EnablePoll = 1;
  Cards[0].setCardData(0x03, 0);
  Cards[0].PollEnabled = 1;
  Cards[1].setCardData(0x07, 1);
  Cards[2].setCardData(0x08, 2);
  Cards[2].PollEnabled = 0;
  Cards[15].setCardData(0x08, 15);
  Cards[16].setCardData(0x08, 16);
  Round();
  for (std::size_t i = 0; i < 17; ++i) EXPECT_EQ(Queue(i).Size(), i == 1 || i == 15 ? 1U : 0U) << i;
}

TEST_F(SerialRound, WithoutThePollFlagNothingIsPolled) {
  Connect();
  Cards[1].setCardData(0x07, 1);
  Round();
  EXPECT_TRUE(Queue(1).IsEmpty());
}

TEST_F(SerialRound, AQueueOf64EntriesGetsNoFurtherPoll) {
  Serial.DeviceName = "/nonexistent";
  Serial.EnablePoll = 1;
  Cards[3].setCardData(0x04, 3);
  for (int i = 0; i < 63; ++i) Queue(3).ToQueue(Bytes({0x10}));
  Round();
  EXPECT_EQ(Queue(3).Size(), 64U);
  Round();
  EXPECT_EQ(Queue(3).Size(), 64U);
}

TEST_F(SerialRound, OpensAClosedLinkAndLogsTheVersion) {
  ExpectCheck();
  Round();
  EXPECT_EQ(Serial.LinkState, 3);
  EXPECT_EQ(Log.Lines(), (Texts{"[INF] try to catch hardware on " + Bus.Device(),
                                "[INF] hardware found on " + Bus.Device() + " version: v1.2"}));
}

TEST_F(SerialRound, DiscoversInTheRoundThatOpensTheLink) {
  const SleepRecord sleeps;
  Serial.AutoDiscover = 1;
  ExpectCheck();
  Bus.ExpectFrame(Bytes({0x30})).Reply(Bytes({'1', 0x04}));
  Round();
  EXPECT_EQ(Cards[0].Name(), "16 channel DIGITAL INPUT");
  EXPECT_EQ(sleeps.Seconds(), Texts{"1"});
}

TEST_F(SerialRound, WithoutAutoDiscoverTheOpenedLinkGoesStraightOn) {
  const SleepRecord sleeps;
  Queue(2).ToQueue(Bytes({0x10, 2}));
  ExpectCheck();
  Acknowledge(Bytes({0x10, 2}));
  Round();
  EXPECT_EQ(sleeps.Seconds(), Texts());
}

TEST_F(SerialRound, ALinkThatDoesNotOpenIsTriedAgainTwoSecondsLater) {
  const SleepRecord sleeps;
  Queue(2).ToQueue(Bytes({0x10, 2}));
  Serial.DeviceName = "/nonexistent";
  Round();
  Round();
  EXPECT_EQ(Serial.LinkState, 0);
  EXPECT_EQ(sleeps.Seconds(), (Texts{"2", "2"}));
  EXPECT_EQ(Log.Count("[ERR] unable to open /nonexistent for hardware communication"), 2);
  EXPECT_EQ(Queue(2).Size(), 1U);
}

TEST_F(SerialRound, ATimeoutClosesTheLinkAndEndsTheRound) {
  Connect();
  Queue(2).ToQueue(Bytes({0x10, 2}));
  Queue(2).ToQueue(Bytes({0x10, 22}));
  Queue(3).ToQueue(Bytes({0x10, 3}));
  Bus.ExpectFrame(Bytes({0x10, 2}));
  Round();
  EXPECT_EQ(Serial.LinkState, 0);
  EXPECT_FALSE(Serial.Fd.IsOpen());
  EXPECT_EQ(Log.Lines(), Texts{"[INF] comm timeout " + Bus.Device()});
  EXPECT_EQ(Queue(2).Size(), 1U);  // the frame itself is lost
  EXPECT_EQ(Queue(3).Size(), 1U);
}

TEST_F(SerialRound, AfterATimeoutTheNextRoundOpensAgainAndSendsTheRest) {
  Connect();
  Queue(2).ToQueue(Bytes({0x10, 2}));
  Queue(3).ToQueue(Bytes({0x10, 3}));
  Bus.ExpectFrame(Bytes({0x10, 2}));
  Round();
  ExpectCheck();
  Acknowledge(Bytes({0x10, 3}));
  Round();
  EXPECT_EQ(Serial.LinkState, 3);
}

TEST_F(SerialRound, PollsAreQueuedAlsoInARoundThatLostTheLink) {
  Connect();
  Serial.EnablePoll = 1;
  Cards[3].setCardData(0x04, 3);
  Queue(2).ToQueue(Bytes({0x10, 2}));
  Bus.ExpectFrame(Bytes({0x10, 2}));
  Round();
  EXPECT_EQ(Queue(3).Size(), 1U);
}

TEST_F(SerialRound, ALinkThatIsWithdrawnTimesOut) {
  Connect();
  Serial.Fd.Withdraw();
  Queue(2).ToQueue(Bytes({0x10, 2}));
  Round();
  EXPECT_EQ(Serial.LinkState, 0);
  EXPECT_EQ(Log.Lines(), Texts{"[INF] comm timeout " + Bus.Device()});
}
