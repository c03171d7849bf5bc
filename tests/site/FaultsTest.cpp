// Every fault of the line that the bus can play: the daemon gets over it by itself
// and loses no command but the one whose exchange timed out.
#include <algorithm>
#include <cstdio>
#include <cstdlib>

#include "SiteTest.h"

namespace {

using std::chrono::steady_clock;

struct Fault {
  const char* name;
  const char* line;      // of the control language
  const char* end = "";  // the line that ends it, where it lasts
  bool must_time_out = true;
};

void PrintTo(const Fault& fault, std::ostream* out) { *out << fault.line; }

constexpr Fault kFaults[] = {
    {"Mute", "mute 500ms"},
    {"DropNext", "drop next 3"},
    {"Late", "late 5ms", "late 0ms", false},
    {"TooLate", "late 2s", "late 0ms"},
    {"Garbage", "garbage 20", "", false},
    {"Split", "split 3", "split 1", false},
    {"WrongLength", "wrong-length"},
    {"WrongAddress", "wrong-address", "", false},
    {"Noise", "noise 5%", "noise 0%"},
    {"CablePull", "cable pull", "cable plug"},
};

constexpr int kWrites = 20;

// REAL_PACE=1: as in the field, without shortened waits. Each case then prints its row
// of docs/design/faults.md.
bool AtRealPace() { return std::getenv("REAL_PACE") != nullptr; }

LaunchOptions Pace() {
  if (!AtRealPace()) return {};
  return {.quick = false};
}

class Faults : public SiteTest, public testing::WithParamInterface<Fault> {
 protected:
  void SendWrites(Client& io) {
    std::string lines;
    for (int value = 1; value <= kWrites; ++value) lines += "a5b0d" + Hex(value) + "\r\n";
    io.Send(lines);
  }

  void ProvokeTimeout() {
    if (GetParam().must_time_out) ExpectLog("INF", "comm timeout /dev/ttyUSB0");
  }

  // What the writes show at the bus: in order, none twice, and no more missing or taken by
  // the fault than exchanges timed out. Gives the number lost.
  int ExpectWritesKept() {
    std::vector<std::string> seen;
    for (const std::string& data : WritesTo("5")) seen.push_back(data.substr(0, 2));
    EXPECT_EQ(seen.back(), Hex(kWrites + 1));
    seen.pop_back();
    EXPECT_TRUE(std::is_sorted(seen.begin(), seen.end())) << testing::PrintToString(seen);
    EXPECT_EQ(std::adjacent_find(seen.begin(), seen.end()), seen.end());
    const int lost = kWrites - static_cast<int>(seen.size()) + WritesLostOnTheLine("5");
    EXPECT_LE(lost, ExchangeTimeouts());
    return lost;
  }

  void PrintRow(steady_clock::duration until_it_works, int lost) {
    if (!AtRealPace()) return;
    std::printf("%s: %d exchanges timed out, %d checks, works again after %.2f s, %d writes lost\n",
                GetParam().line, ExchangeTimeouts(),
                CountLogged("[INF] try to catch hardware on /dev/ttyUSB0") - 1,
                std::chrono::duration<double>(until_it_works).count(), lost);
  }
};

}  // namespace

TEST_P(Faults, LoseNoCommandButTheOneThatTimedOut) {
  const Fault& fault = GetParam();
  WriteConfig({.poll = "TRUE"});
  StartBus();
  StartDaemonOnBus(8, Pace());
  Client io = Connect(kIo);
  Client mon = Connect(kMon);

  auto began = steady_clock::now();
  Bus(fault.line);
  SendWrites(io);
  ProvokeTimeout();
  if (*fault.end != '\0') {
    Bus(fault.end);
    began = steady_clock::now();
  }
  Bus("press 3 06");
  io.ExpectBytes("a3b0d40\r\n\r");
  const auto until_it_works = steady_clock::now() - began;
  mon.ReadUntil("a3b0d40\r\n\r");

  io.Send("a5b0d" + Hex(kWrites + 1) + "\r\n");
  WaitFrame("10 05 02 " + Hex(kWrites + 1));
  ExpectHeld("5", "Lines " + Hex(kWrites + 1) + " FF");
  PrintRow(until_it_works, ExpectWritesKept());
  io.ExpectSilence();
  ExpectAnswer();
}

INSTANTIATE_TEST_SUITE_P(OfTheLine, Faults, testing::ValuesIn(kFaults),
                         [](const auto& test) { return std::string(test.param.name); });

TEST_F(SiteTest, AnswerThatNamesAnotherCardIsNoAnswer) {
  StartSite();
  Bus("wrong-address");
  Command("REBOOT:3", "CIE: BUS WRITE ERROR\r\n\r");
  Request("REBOOT:3", "CIA: Card is REBOOTED\r\n\rRBT:0x3:OK\r\n\r");
}

TEST_F(SiteTest, RequestThatIsDroppedIsAnError) {
  StartSite();
  Bus("drop next 1");
  Command("GETSCA0:0", "CIE: PARAM READ ERROR\r\n\r");
  ExpectLog("INF", "comm timeout /dev/ttyUSB0");
  Request("GETSCA0:0", "CIA: SERVO PARAM is GOT from card\r\n\rSPG:0x0:SCA0:0x00\r\n\r");
}

TEST_F(SiteTest, OnlyTheWriteThatTimedOutIsLost) {
  StartSite();
  Client io = Connect(kIo);
  Bus("drop next 1");
  io.Send("a5b0d01\r\na5b0d02\r\na5b0d03\r\n");
  for (const char* value : {"01", "02", "03"}) WaitFrame(std::string("10 05 02 ") + value);
  ExpectHeld("5", "Lines 03 FF");
  EXPECT_EQ(WritesLostOnTheLine("5"), 1);
  ExpectLog("INF", "comm timeout /dev/ttyUSB0");
}
