#include "line/Faults.h"

#include <gtest/gtest.h>

#include "BusProcess.h"

namespace virtualbus {
namespace {

const Bytes kPollReply{0x21, 0x03, 0x00, 0x00};

class LineFaults : public BusTest {
 protected:
  void Plug() { Start({"--card", "3=digital-input", "--card", "5=digital-output"}); }
  void Poll() { host->Send({0x20, 0x03, 0x02}); }
  void Write() { host->Send({0x10, 0x05, 0x02, 0x00, 0x00}); }
  // What stands between here and there is not answered: the next reply is to a frame of its own.
  void ExpectNothingWaiting() { EXPECT_EQ(Ask({0x99}), Bytes{0x4E}); }
};

TEST_F(LineFaults, DroppedFramesAreNeitherAnsweredNorDone) {
  Plug();
  EXPECT_EQ(Order("drop next 2"), "ok");
  Write();
  Poll();
  ExpectNothingWaiting();
  EXPECT_EQ(Order("show 5"), "card 5 digital-output\n  Lines FF FF\nok");
  EXPECT_EQ(Ask({0x20, 0x03, 0x02}), kPollReply);
}

TEST_F(LineFaults, AMutedLineHearsNothingForAWhile) {
  Plug();
  EXPECT_EQ(Order("mute 24000s"), "ok");
  Write();
  EXPECT_EQ(Order("wait frame 10"), "ok");
  EXPECT_EQ(Order("mute 0ms"), "ok");
  ExpectNothingWaiting();
  EXPECT_EQ(Order("mute 30ms"), "ok");
  EXPECT_TRUE(WaitUntil([this] {
    Poll();
    return Order("status").find("replies 1\n") == std::string::npos;
  }));
  EXPECT_EQ(host->ReceiveReply(), kPollReply);
}

TEST_F(LineFaults, LateRepliesComeWholeAfterTheirDelay) {
  Plug();
  EXPECT_EQ(Order("late 60ms"), "ok");
  const auto began = std::chrono::steady_clock::now();
  EXPECT_EQ(Ask({0x20, 0x03, 0x02}), kPollReply);
  EXPECT_GE(std::chrono::steady_clock::now() - began, std::chrono::milliseconds(60));
  Poll();
  EXPECT_EQ(Order("late 0ms"), "ok");
  EXPECT_EQ(Ask({0x99}), kPollReply) << "a later reply does not overtake";
  EXPECT_EQ(host->ReceiveReply(), Bytes{0x4E});
}

TEST_F(LineFaults, SplitRepliesComeInPieces) {
  Plug();
  EXPECT_EQ(Order("split 3"), "ok");
  const auto began = std::chrono::steady_clock::now();
  EXPECT_EQ(Ask({0x20, 0x03, 0x02}), kPollReply);
  EXPECT_GE(std::chrono::steady_clock::now() - began, std::chrono::milliseconds(4)) << "two gaps";
  EXPECT_EQ(Order("split 255"), "ok");
  EXPECT_EQ(Ask({0x20, 0x03, 0x02}), kPollReply);
}

TEST_F(LineFaults, AWrongLengthIsOneTooHigh) {
  Plug();
  EXPECT_EQ(Order("wrong-length"), "ok");
  Poll();
  EXPECT_EQ(host->Receive(5), (Bytes{0x05, 0x21, 0x03, 0x00, 0x00}));
  Poll();
  EXPECT_EQ(host->Receive(5), (Bytes{0x04, 0x21, 0x03, 0x00, 0x00}));
}

TEST_F(LineFaults, AWrongAddressIsTheNextOne) {
  Plug();
  EXPECT_EQ(Order("wrong-address 2"), "ok");
  EXPECT_EQ(Ask({0x30}).size(), 17U) << "has none, so it waits for a reply that does";
  EXPECT_EQ(Ask({0x20, 0x03, 0x02}), (Bytes{0x21, 0x04, 0x00, 0x00}));
  EXPECT_EQ(Ask({0x50, 0x05, 0x01, 0xAB}), (Bytes{0x51, 0x06, 0xAB, 0x00}));
  EXPECT_EQ(Ask({0x20, 0x03, 0x02}), kPollReply);
}

TEST_F(LineFaults, GarbageComesAtOnceAndTheSameForASeed) {
  Bytes first;
  for (int run = 0; run < 2; ++run) {
    Start({"--seed", "7"});
    EXPECT_EQ(Order("garbage 20"), "ok");
    const Bytes garbage = host->Receive(20);
    if (run == 0) first = garbage;
    EXPECT_EQ(garbage, first);
    EXPECT_EQ(Order("quit"), "ok");
    bus->WaitForExit();
  }
}

TEST_F(LineFaults, OffEndsThemAll) {
  Plug();
  for (const char* line : {"mute 100s", "drop next 9", "late 9s", "split 3", "wrong-length 9",
                           "wrong-address 9", "noise 100%"}) {
    EXPECT_EQ(Order(line), "ok") << line;
  }
  EXPECT_EQ(Order("faults off"), "ok");
  EXPECT_EQ(Ask({0x20, 0x03, 0x02}), kPollReply);
}

// What became of many exchanges: "." came through, "q" request lost, a digit the reply byte lost.
std::string Fates(uint32_t seed, double chance, int exchanges) {
  Faults faults(seed);
  faults.Noise(chance);
  const Bytes reply{0x21, 0x22, 0x23, 0x24};
  std::string fates;
  for (int i = 0; i < exchanges; ++i) {
    if (!faults.WhyLost().empty()) {
      fates += 'q';
      continue;
    }
    const Bytes line = faults.Shape(reply).line;
    if (line.size() == 5) {
      fates += '.';
      continue;
    }
    size_t lost = 0;
    while (lost < line.size() && line[lost] == (lost == 0 ? 4 : 0x20 + lost)) ++lost;
    fates += static_cast<char>('0' + lost);
  }
  return fates;
}

TEST(Noise, TheSameSeedSpoilsTheSameBytes) {
  EXPECT_EQ(Fates(1, 0.5, 24), "4.1.q102.1.q.4..21q....3");
  EXPECT_EQ(Fates(5, 0.01, 5000), Fates(5, 0.01, 5000));
  EXPECT_NE(Fates(5, 0.01, 5000), Fates(6, 0.01, 5000));
}

TEST(Noise, HitsAsOftenAsItsChanceSays) {
  const std::string fates = Fates(1, 0.01, 100000);
  const auto spoilt = 100000 - std::count(fates.begin(), fates.end(), '.');
  EXPECT_GT(spoilt, 900);
  EXPECT_LT(spoilt, 1100);
  EXPECT_EQ(Fates(1, 0.0, 1000), std::string(1000, '.'));
  const std::string all = Fates(1, 1.0, 1000);
  EXPECT_EQ(std::count(all.begin(), all.end(), '.'), 0);
}

TEST(Noise, SpoiltRepliesAreAByteShortAndNeverFalse) {
  Faults faults(1);
  faults.Noise(1.0);
  for (int i = 0; i < 1000; ++i) {
    if (!faults.WhyLost().empty()) continue;
    EXPECT_EQ(faults.Shape({0x21, 0x03, 0x00, 0x00}).line.size(), 4U);
  }
}

}  // namespace
}  // namespace virtualbus
