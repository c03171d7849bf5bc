// A noisy line for so many minutes: ten input cards polled at full speed on a wire of
// 460800 baud where one exchange in a thousand loses a byte, outputs written ten times
// a second, and a client that checks every report. Prints what was counted.
//   site_run [MINUTES]
#include <atomic>
#include <cstdio>
#include <fstream>
#include <iterator>
#include <mutex>
#include <thread>

#include "SiteTest.h"

namespace {

using std::chrono::steady_clock;

constexpr std::chrono::milliseconds kTick{100};
constexpr int kDigitalInputs = 7;  // at 0 to 6
constexpr int kInputs = 10;        // two keys and an analogue card behind them
constexpr int kLastValue = 0x3F;   // what a key card can hold

// An input block of one card: changed again only when its last change was reported.
struct Input {
  std::string kind;
  int reported = 0;
  int target = 0;
  bool averaged = false;  // an average of old and new may come before the new value
};

struct Counts {
  long changes = 0;
  long reports = 0;
  long doubled = 0;
  long wrong = 0;
  long lost = 0;
  std::atomic<long> writes = 0;
  long unseen_writes = 0;
};

std::string Hex(int byte) {
  char text[3];
  std::snprintf(text, sizeof text, "%02X", static_cast<unsigned>(byte));
  return text;
}

double Minutes() {
  std::ifstream file("/proc/self/cmdline", std::ios::binary);
  std::string word;
  std::getline(file, word, '\0');
  return std::getline(file, word, '\0') ? std::atof(word.c_str()) : 20.0;
}

class SiteRun : public SiteTest {
 protected:
  void Start() {
    for (int i = 0; i < kInputs; ++i) {
      inputs_[i].kind = i < kDigitalInputs ? "digital-input" : i == 9 ? "analogue-input" : "keys";
      inputs_[i].averaged = i == 9;
    }
    std::vector<std::string> options{"--wire", "460800", "--seed",
                                     "1",      "--card", "A=digital-output"};
    for (int i = 0; i < kInputs; ++i) {
      options.insert(options.end(), {"--card", std::to_string(i) + "=" + inputs_[i].kind});
    }
    WriteConfig({.percent = "100", .poll = "TRUE"});
    StartBus(options);
    // As it runs in the field: real waits, and the scheduler as it is.
    StartDaemonOnBus(kInputs + 1, {.quick = false, .environment = {{"LD_PRELOAD", ""}}});
    io_ = Connect(kIo);
  }

  void Run(double minutes) {
    const auto end = steady_clock::now() + std::chrono::duration<double, std::ratio<60>>(minutes);
    std::jthread reader([this] { ReadReports(); });
    virtualbus::Script script(kControlPath);
    script.Tell("mark");
    std::jthread watcher([this, &script] { WatchWrites(script); });
    Bus("noise 0.1%");
    for (auto tick = steady_clock::now(); tick < end; tick += kTick) {
      std::this_thread::sleep_until(tick);
      ChangeInputs();
      io_.Send("aAb0d" + Hex(WriteValue(counts.writes++)) + "\r\n");
    }
    Bus("noise 0%");
    over_ = true;
    if (!WaitUntil([this] { return Pending() == 0; })) counts.lost = Pending();
    Bus("set 0 1 FF");  // block 1 is never used otherwise: the reader's last report
  }

  void PrintMemory(const char* when) {
    const std::string of_bus = ReadFile("/proc/" + std::to_string(bus->Pid()) + "/status");
    std::printf("resident at the %s: qelm %ld KiB, qelm-bus %ld KiB\n", when,
                daemon.ResidentKilobytes(), std::atol(&of_bus[of_bus.find("VmRSS:") + 6]));
  }

  Counts counts;

 private:
  static int WriteValue(long number) { return static_cast<int>(number % 255); }

  void ChangeInputs() {
    const std::lock_guard guard(lock_);
    for (int i = 0; i < kInputs; ++i) {
      Input& input = inputs_[i];
      if (input.reported != input.target) continue;
      input.target = input.target % kLastValue + 1;
      ++counts.changes;
      Bus("set " + std::to_string(i) + " 0 " + Hex(input.target));
    }
  }

  long Pending() {
    const std::lock_guard guard(lock_);
    return std::count_if(std::begin(inputs_), std::end(inputs_),
                         [](const Input& input) { return input.reported != input.target; });
  }

  void ReadReports() {
    while (true) {
      const std::string report = io_.ReadUntil("\r\n\r");
      if (report == "a0b1dFF\r\n\r" || report.empty()) return;
      const std::lock_guard guard(lock_);
      ++counts.reports;
      TakeReport(report);
    }
  }

  void TakeReport(const std::string& report) {
    unsigned card = 0, block = 0, value = 0;
    const int fields = std::sscanf(report.c_str(), "a%1Xb%1Xd%2X", &card, &block, &value);
    if (fields != 3 || card >= kInputs || block != 0) {
      ++counts.wrong;
      return;
    }
    Input& input = inputs_[card];
    const int is_now = static_cast<int>(value);
    const bool between = input.averaged && (is_now < input.target) != (is_now < input.reported);
    if (is_now == input.reported)
      ++counts.doubled;
    else if (is_now != input.target && !between)
      ++counts.wrong;
    input.reported = is_now;
  }

  // Each write must come to the adapter, in order, also those that noise takes there.
  void WatchWrites(virtualbus::Script& script) {
    for (long number = 0; !over_ || number < counts.writes; ++number) {
      while (number >= counts.writes && !over_) std::this_thread::sleep_for(kTick / 10);
      if (number >= counts.writes) return;
      const std::string wait = "wait frame 10 0A 02 " + Hex(WriteValue(number)) + " within 9s";
      if (script.Tell(wait) != "ok") ++counts.unseen_writes;
    }
  }

  Client io_;
  std::atomic<bool> over_ = false;
  std::mutex lock_;  // of the inputs and the counts of reports
  Input inputs_[kInputs];
};

}  // namespace

TEST_F(SiteRun, LosesNothing) {
  Start();
  PrintMemory("start");
  std::fflush(stdout);
  Run(Minutes());
  PrintMemory("end");
  std::printf("%s", Bus("status").c_str());
  std::printf("inputs: %ld changes, %ld reports, %ld lost, %ld doubled, %ld wrong\n",
              counts.changes, counts.reports, counts.lost, counts.doubled, counts.wrong);
  std::printf("outputs: %ld writes, %ld never came to the adapter, %d lost on the line there\n",
              counts.writes.load(), counts.unseen_writes, WritesLostOnTheLine("A"));
  std::printf("link: %d exchanges timed out, opened again %d times\n", ExchangeTimeouts(),
              CountLogged("[INF] hardware found on /dev/ttyUSB0 version: v1.2") - 1);
  EXPECT_EQ(counts.lost + counts.doubled + counts.wrong + counts.unseen_writes, 0);
  EXPECT_LE(WritesLostOnTheLine("A"), ExchangeTimeouts());
}
