#include "bus/PerifCard.h"

#include <gtest/gtest.h>

#include <array>
#include <vector>

#include "kit/Helper.h"
#include "support/Lists.h"

namespace {

constexpr unsigned char kMark = 0x5A;  // stands where nothing may be written

PERIFCARD& Fill(PERIFCARD& card) {
  card.BlockData.fill(kMark);
  card.BlockChanged.fill(1);
  card.AnalogueSums.fill(9);
  card.Address = 12;
  card.SampleCount = 4;
  card.SamplesPerAverage = 2;
  return card;
}

}  // namespace

TEST(PerifCard, ANewRecordIsZeroed) {
  PERIFCARD card;
  EXPECT_EQ(card.Address, 0);
  EXPECT_EQ(card.SampleCount, 0);
  EXPECT_EQ(card.SamplesPerAverage, 6);
  EXPECT_EQ(card.CopyPollFrame(), QList());
}

TEST(PerifCard, ClearingEmptiesAllButAddressAndSampleCount) {
  PERIFCARD card;
  card.setCardData(0x04, 12);
  Fill(card).clearPerifCard();
  EXPECT_EQ(card.IoKind, 3);
  EXPECT_EQ(card.BlockCount, 0);
  EXPECT_EQ(card.CardType, 0);
  EXPECT_EQ(card.Name(), "EMPTY");
  EXPECT_EQ(card.AnalogueSums, (std::array<int, 6>{}));
  EXPECT_EQ(card.SamplesPerAverage, 6);
  for (std::size_t b = 0; b < 16; ++b) {
    EXPECT_EQ(card.BlockData[b], 0);
    EXPECT_EQ(card.BlockChanged[b], 0);
  }
  EXPECT_EQ(card.PollEnabled, 0);
  EXPECT_EQ(card.CopyPollFrame(), QList());
  EXPECT_EQ(card.Address, 12);
  EXPECT_EQ(card.SampleCount, 4);
}

struct Kind {
  const char* test;
  unsigned char type;
  bool known;
  const char* name;
  int io_kind;
  int blocks;
  int preset_blocks;
  unsigned char preset;
  QList poll_frame;
};

void PrintTo(const Kind& kind, std::ostream* out) { *out << kind.test; }

class PerifCardKind : public testing::TestWithParam<Kind> {};

TEST_P(PerifCardKind, IsTakenOn) {
  const Kind& kind = GetParam();
  PERIFCARD card;
  card.clearPerifCard();
  Fill(card);
  EXPECT_EQ(card.setCardData(kind.type, 5), kind.known);
  EXPECT_EQ(card.CardType, kind.type);
  EXPECT_EQ(card.Address, 5);
  EXPECT_EQ(card.Name(), kind.name);
  EXPECT_EQ(card.IoKind, kind.io_kind);
  EXPECT_EQ(card.BlockCount, kind.blocks);
  EXPECT_EQ(card.CopyPollFrame(), kind.poll_frame);
  EXPECT_EQ(card.PollEnabled, kind.poll_frame.empty() ? 0 : 1);
  for (int b = 0; b < 20; ++b)
    EXPECT_EQ(card.BlockData[static_cast<std::size_t>(b)],
              b < kind.preset_blocks ? kind.preset : kMark)
        << b;
  EXPECT_EQ(card.SampleCount, 4);
  EXPECT_EQ(card.SamplesPerAverage, 2);
}

INSTANTIATE_TEST_SUITE_P(
    Table, PerifCardKind,
    testing::Values(
        Kind{"Empty", 0x00, true, "EMPTY", 3, 0, 0, 0, {}},
        Kind{"DigitalOutput", 0x03, true, "16 channel DIGITAL OUTPUT", 0, 2, 2, 0xFF, {}},
        Kind{"DigitalInput", 0x04, true, "16 channel DIGITAL INPUT", 1, 2, 0, 0,
             List({0x20, 0x05, 0x02})},
        Kind{"Servo", 0x05, true, "6 channel RC SERVO CONTROLLER", 0, 6, 6, 0x80, {}},
        Kind{"Motor", 0x06, true, "3 channel DC MOTOR CONTROLLER", 0, 6, 0, 0, {}},
        Kind{"AnalogueInput", 0x07, true, "6 channel ANALOGUE INPUT", 1, 6, 0, 0,
             List({0x20, 0x05, 0x06})},
        Kind{"KeyMatrix", 0x08, true, "KEYMX and ROTE CONTROLLER", 1, 1, 0, 0,
             List({0x20, 0x05, 0x01})},
        Kind{"Lcd", 0x09, true, "ALPHANUMERIC LCD CONTROLLER", 0, 21, 0, 0, {}},
        Kind{"Infrared", 0x0A, true, "IR REMOTE CONTROLLER", 0, 1, 0, 0, {}},
        Kind{"Silent", 0xFF, true, "CARD?", 3, 0, 0, 0, {}},
        Kind{"Type01", 0x01, false, "UNIDENTIFIED", 3, 0, 0, 0, {}},
        Kind{"Type02", 0x02, false, "UNIDENTIFIED", 3, 0, 0, 0, {}},
        Kind{"Type0B", 0x0B, false, "UNIDENTIFIED", 3, 0, 0, 0, {}},
        Kind{"TypeFE", 0xFE, false, "UNIDENTIFIED", 3, 0, 0, 0, {}}),
    [](const auto& kind) { return std::string(kind.param.test); });

TEST(PerifCard, AShorterNameReplacesALongerOne) {
  PERIFCARD card;
  card.setCardData(0x05, 1);
  card.setCardData(0x00, 1);
  EXPECT_EQ(card.Name(), "EMPTY");
}

TEST(PerifCard, FoundAgainItIsPolledTwiceInOneFrame) {
  PERIFCARD card;
  card.setCardData(0x04, 5);
  card.setCardData(0x04, 5);
  EXPECT_EQ(card.CopyPollFrame(), List({0x20, 0x05, 0x02, 0x20, 0x05, 0x02}));
  card.setCardData(0x00, 5);
  EXPECT_EQ(card.CopyPollFrame().size(), 6U);
  EXPECT_EQ(card.PollEnabled, 1);
}

TEST(PerifCard, ThePollFrameStopsGrowingAt255Bytes) {
  PERIFCARD card;
  for (int i = 0; i < 85; ++i) card.setCardData(0x08, 1);
  EXPECT_EQ(card.CopyPollFrame().size(), 255U);
  card.setCardData(0x08, 1);
  EXPECT_EQ(card.CopyPollFrame().size(), 255U);
  EXPECT_EQ(card.CopyPollFrame().back(), 0x01);
}

TEST(PerifCard, ReportsABlockInUpperCaseHexadecimal) {
  PERIFCARD card;
  card.BlockData[1] = 0x3C;
  card.BlockData[15] = 0x0F;
  EXPECT_EQ(Text(card.Report(4, 1)), "a4b1d3C");
  EXPECT_EQ(Text(card.Report(15, 15)), "aFbFd0F");
  EXPECT_EQ(Text(card.Report(0, 0)), "a0b0d00");
}

TEST(PerifCard, FilesTheFirst16BytesOfAQueryReply) {
  PERIFCARD card;
  std::vector<unsigned char> reply;
  for (unsigned char i = 0; i < 20; ++i) reply.push_back(static_cast<unsigned char>(0x51 + i));
  card.FileQueryReply(reply);
  EXPECT_EQ(card.QueryReply[0], 0x51);
  EXPECT_EQ(card.QueryReply[15], 0x60);
  EXPECT_EQ(card.QueryReply[16], 0);
}

TEST(PerifCard, FilesAbsentBytesAsZero) {
  PERIFCARD card;
  card.QueryReply.fill(kMark);
  card.FileQueryReply(std::vector<unsigned char>{0x51, 0x02});
  EXPECT_EQ(card.QueryReply[0], 0x51);
  EXPECT_EQ(card.QueryReply[1], 0x02);
  for (std::size_t i = 2; i < 16; ++i) EXPECT_EQ(card.QueryReply[i], 0) << i;
}

TEST(PerifCard, ClearingTheQueryReplyZeroes16Bytes) {
  PERIFCARD card;
  card.QueryReply.fill(kMark);
  card.ClearQueryReply();
  for (std::size_t i = 0; i < 16; ++i) EXPECT_EQ(card.QueryReply[i], 0) << i;
}

// The master loop clears the table while a late discovery may still fill it.
TEST(PerifCard, IsClearedByOneThreadWhileAnotherFillsIt) {
  PERIFCARD card;
  Helper filling([&] {
    for (int i = 0; i < 2000; ++i) {
      card.setCardData(0x04, 5);
      const std::vector<unsigned char> blocks{static_cast<unsigned char>(i), 1};
      card.TakeInput(blocks);
      card.CopyPollFrame();
    }
  });
  for (int i = 0; i < 2000; ++i) {
    card.clearPerifCard();
    card.Name();
    card.Report(5, 0);
  }
  filling.Join();
  card.clearPerifCard();
  card.setCardData(0x04, 5);
  EXPECT_EQ(card.CopyPollFrame(), List({0x20, 0x05, 0x02}));
}
