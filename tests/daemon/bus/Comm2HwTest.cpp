// One exchange with the adapter.
#include <ctime>
#include <numeric>

#include "support/GiveWayRecord.h"
#include "support/SerialTest.h"

namespace {

const QList kFrame = List({0x10, 0x05, 0x02, 0xFF, 0xFB});

class Comm2Hw : public SerialTest {
 protected:
  Comm2Hw() { Connect(); }
};

QList Counted(int count) {
  QList list;
  for (int i = 0; i < count; ++i) list.push_back(static_cast<char>(i));
  return list;
}

QList OnWire(const QList& payload) {
  QList wire = List({static_cast<int>(payload.size())});
  wire.insert(wire.end(), payload.begin(), payload.end());
  return wire;
}

// What this thread has had of the processor.
double ProcessorMicroseconds() {
  timespec time{};
  clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time);
  return static_cast<double>(time.tv_sec) * 1e6 + static_cast<double>(time.tv_nsec) / 1e3;
}

}  // namespace

TEST_F(Comm2Hw, SendsTheLengthInFrontAndGivesBackThePayload) {
  bus.ExpectFrame(kFrame).Reply(List("OK"));
  EXPECT_EQ(Text(serial.Comm2HW(kFrame)), "OK");
  EXPECT_EQ(bus.Reads(), 1);
  EXPECT_EQ(serial.AwaitingReply, 0);
  EXPECT_EQ(serial.RxCount, 3);
}

TEST_F(Comm2Hw, ZeroBytesAreData) {
  bus.ExpectFrame(List({0x00, 0x00})).Reply(List({0x21, 0x00, 0x00, 0x07}));
  EXPECT_EQ(serial.Comm2HW(List({0x00, 0x00})), List({0x21, 0x00, 0x00, 0x07}));
}

TEST_F(Comm2Hw, SendsNothingForAnEmptyFrame) { EXPECT_EQ(Text(serial.Comm2HW({})), "LCE"); }

TEST_F(Comm2Hw, DiscardsStaleInputFirst) {
  bus.Send(List("\x03late"));
  bus.ExpectFrame(kFrame).Reply(List("OK"));
  EXPECT_EQ(Text(serial.Comm2HW(kFrame)), "OK");
}

TEST_F(Comm2Hw, AnEmptyFrameDiscardsStaleInputToo) {
  bus.Send(List("\x03late"));
  serial.Comm2HW({});
  bus.Send(OnWire(List("mine")));
  serial.Comm2HW({});
  bus.ExpectFrame(kFrame).Reply(List("OK"));
  EXPECT_EQ(Text(serial.Comm2HW(kFrame)), "OK");
}

TEST_F(Comm2Hw, DiscardsNoMoreThan255Bytes) {
  bus.Send(QList(255, 'x'));
  bus.Send(List({0x02, 'l', 'o'}));
  bus.ExpectFrame(kFrame);
  EXPECT_EQ(Text(serial.Comm2HW(kFrame)), "lo");
}

TEST_F(Comm2Hw, AReplyMayComeInPieces) {
  bus.ExpectFrame(kFrame).Pieces({List({0x04}), List("a"), List("bc"), List("d")});
  EXPECT_EQ(Text(serial.Comm2HW(kFrame)), "abcd");
  EXPECT_EQ(bus.Reads(), 4);
}

TEST_F(Comm2Hw, AnIncompleteReplyIsATimeout) {
  bus.ExpectFrame(kFrame).Pieces({List({0x04}), List("abc")});
  EXPECT_EQ(Text(serial.Comm2HW(kFrame)), "TME");
  EXPECT_EQ(serial.AwaitingReply, 1);
}

TEST_F(Comm2Hw, AReplyOfNoBytesIsEmpty) {
  bus.ExpectFrame(kFrame).Pieces({List({0x00})});
  EXPECT_EQ(serial.Comm2HW(kFrame), QList());
}

TEST_F(Comm2Hw, BytesBehindTheReplyAreNotPartOfIt) {
  bus.ExpectFrame(kFrame).Pieces({List("\x02OKmore")});
  EXPECT_EQ(Text(serial.Comm2HW(kFrame)), "OK");
}

TEST_F(Comm2Hw, WaitsFor150000Reads) {
  bus.ExpectFrame(kFrame);
  EXPECT_EQ(Text(serial.Comm2HW(kFrame)), "TME");
  EXPECT_EQ(bus.Reads(), 150'000);
}

TEST_F(Comm2Hw, WaitsTwiceAsLongForACheckAndForADiscovery) {
  for (const QList& frame : {List({0x40, 0x6F, 0x9A}), List({0x30})}) {
    bus.ExpectFrame(frame);
    EXPECT_EQ(Text(serial.Comm2HW(frame)), "TME");
    EXPECT_EQ(bus.Reads(), 300'000);
  }
}

TEST_F(Comm2Hw, OffersTheProcessorEarlyAndSeldom) {
  const GiveWayRecord record(bus);
  bus.ExpectFrame(kFrame);
  serial.Comm2HW(kFrame);
  EXPECT_EQ(record.yield_reads, (std::vector<long>{16, 64, 256, 1024}));
}

TEST_F(Comm2Hw, SleepsAsLongAsItReadsAMillisecondAtATime) {
  const GiveWayRecord record(bus);
  bus.ExpectFrame(kFrame);
  const double begin = ProcessorMicroseconds();
  serial.Comm2HW(kFrame);
  const double read_for = ProcessorMicroseconds() - begin;

  const auto& sleeps = record.microseconds;
  const double slept = std::accumulate(sleeps.begin(), sleeps.end(), 0.0);
  EXPECT_GT(slept, 0.9 * read_for);
  EXPECT_LE(slept, read_for);
  EXPECT_GT(static_cast<double>(sleeps.size()), 0.3 * read_for / 1000);
  EXPECT_LE(static_cast<double>(sleeps.size()), read_for / 1000);
}

TEST_F(Comm2Hw, APromptReplyCostsNeitherAnOfferNorASleep) {
  const GiveWayRecord record(bus);
  bus.ExpectFrame(kFrame).Reply(List("OK")).AtRead(16);
  EXPECT_EQ(Text(serial.Comm2HW(kFrame)), "OK");
  EXPECT_EQ(record.yield_reads, std::vector<long>());
  EXPECT_EQ(record.microseconds, std::vector<unsigned>());
}

TEST_F(Comm2Hw, TheReadBeforeTheLastStillBringsAReply) {
  bus.ExpectFrame(kFrame).Reply(List("OK")).AtRead(149'999);
  EXPECT_EQ(Text(serial.Comm2HW(kFrame)), "OK");
}

TEST_F(Comm2Hw, AReplyThatTheLastReadCompletesIsATimeout) {
  bus.ExpectFrame(kFrame).Reply(List("OK")).AtRead(150'000);
  EXPECT_EQ(Text(serial.Comm2HW(kFrame)), "TME");
}

TEST_F(Comm2Hw, AReplyThatCameTooLateIsDiscardedByTheNextExchange) {
  bus.ExpectFrame(kFrame);
  EXPECT_EQ(Text(serial.Comm2HW(kFrame)), "TME");
  bus.Send(List("\x04late"));
  bus.ExpectFrame(kFrame).Reply(List("OK"));
  EXPECT_EQ(Text(serial.Comm2HW(kFrame)), "OK");
}

TEST_F(Comm2Hw, TheLongestPayloadHas255Bytes) {
  bus.ExpectFrame(Counted(255)).Reply(List("OK"));
  EXPECT_EQ(Text(serial.Comm2HW(Counted(255))), "OK");
}

TEST_F(Comm2Hw, ALongerPayloadIsCutTo255Bytes) {
  for (const int size : {256, 300, 1000}) {
    bus.ExpectFrame(Counted(255)).Reply(List("OK"));
    EXPECT_EQ(Text(serial.Comm2HW(Counted(size))), "OK") << size;
  }
}

TEST_F(Comm2Hw, KeepsAReplyThatFillsTheBuffer) {
  bus.ExpectFrame(kFrame).Reply(Counted(135));
  EXPECT_EQ(serial.Comm2HW(kFrame), Counted(135));
}

TEST_F(Comm2Hw, ALongerReplyIsReadToItsEndAndKeptUpToTheBuffersEnd) {
  for (const int size : {136, 200, 255}) {
    bus.ExpectFrame(kFrame).Reply(Counted(size));
    EXPECT_EQ(serial.Comm2HW(kFrame), Counted(135)) << size;
    EXPECT_EQ(serial.RxCount, size + 1);
  }
}

TEST_F(Comm2Hw, ALongReplyInPiecesIsBoundedToo) {
  QList rest = Counted(255);
  QList first = List({0xFF});
  first.splice(first.end(), rest, rest.begin(), std::next(rest.begin(), 130));
  bus.ExpectFrame(kFrame).Pieces({first, rest});
  EXPECT_EQ(serial.Comm2HW(kFrame), Counted(135));
  EXPECT_EQ(serial.RxCount, 256);
}

TEST_F(Comm2Hw, AFailedWriteIsLoggedAndEndsInATimeout) {
  serial.Fd.Close();
  serial.DeviceName = "/dev/pulled";
  EXPECT_EQ(Text(serial.Comm2HW(kFrame)), "TME");
  EXPECT_EQ(log.Lines(), Texts{"[ERR] unable to  write to /dev/pulled"});
}
