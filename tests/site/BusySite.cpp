// A busy site for so many minutes: inputs, outputs, texts on a display, a console that
// asks, a monitor client that comes and goes, and a cable that is pulled every 36 seconds.
// Writes what the daemon used and how fast it was, and prints what was counted.
//   busy_site [MINUTES [FILE]]
// A line of the file: seconds, resident KiB, descriptors, threads, then milliseconds:
// median and 99th percentile from a change to its report (of what is not averaged), longest
// answer of the console.
#include <algorithm>
#include <cstdio>
#include <fstream>

#include "SiteLoad.h"

namespace {

using std::chrono::milliseconds;

constexpr long kWritesPerSecond = 10;
constexpr long kPullEvery = 36 * kWritesPerSecond;  // 50 in half an hour
constexpr long kSampleEvery = 5 * kWritesPerSecond;
constexpr long kTextEvery = 2 * kWritesPerSecond;
constexpr long kLinesPerCardRequest = 30;

double MillisecondsSince(std::chrono::steady_clock::time_point begin) {
  return std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - begin)
      .count();
}

double Percentile(const std::vector<double>& sorted, std::size_t percent) {
  return sorted.empty() ? 0 : sorted[(sorted.size() - 1) * percent / 100];
}

class BusySite : public SiteLoad {
 protected:
  void OnWrite(long write) {
    if (write % kTextEvery == 0) {
      io.Send("aBlPAp0101tText " + std::to_string(write) + "\r\n");
      ++texts;
    }
    const long since_pull = (write + kPullEvery / 2) % kPullEvery;
    if (since_pull == 0) Bus("cable pull");
    if (since_pull == kWritesPerSecond) {
      Bus("cable plug");
      ++pulls;
    }
    if (write % kSampleEvery == 0) Sample();
  }

  // One console client all the time. A line that asks a card holds the daemon's master
  // loop, and with it everybody, for the second in which the card may answer.
  void WorkAtConsole() {
    for (; !over; ++lines) {
      const bool asks_card = lines % kLinesPerCardRequest == 0;
      const auto sent = Clock::now();
      cae.Send(asks_card ? "GETMSR2:C\r\n" : "DISCOVER\r\n");
      const std::string answer = cae.ReadUntil(">\r\n\r");
      longest_answer_ = std::max<double>(longest_answer_, MillisecondsSince(sent));
      const bool good = answer.find(asks_card ? "MSR2:0xC:" : "DTI:0xF:") != std::string::npos;
      if (!good) ++(asks_card ? unanswered : bad_answers);
      std::this_thread::sleep_for(milliseconds(1000));
    }
  }

  // Comes as soon as the port takes it; leaves with an end and with a reset in turn.
  void ComeAndGo() {
    while (!over) {
      Client monitor = Dial(kMon);
      monitor.ReadUntil("QELM MON interface is ready\r\n\r");
      std::this_thread::sleep_for(milliseconds(500));
      if (++sessions % 2 == 0) monitor.Reset();
    }
  }

  // Values of writes that the adapter did not get, and those out of order.
  long MissingWrites() {
    long write = 0;
    long came = 0;
    for (const std::string& data : WritesTo("A")) {
      while (write < writes && data != ValueOf(write) + " FF") ++write;
      if (write++ < writes) ++came;
    }
    return writes - came;
  }

  std::atomic<bool> over = false;
  long texts = 0, pulls = 0, sessions = 0;
  long lines = 0, bad_answers = 0, unanswered = 0;

 private:
  void Sample() {
    std::vector<double> latencies = TakeLatencies();
    std::sort(latencies.begin(), latencies.end());
    file_ << MillisecondsSince(began_) / 1000 << ' ' << daemon.ResidentKilobytes() << ' '
          << daemon.Descriptors().size() << ' ' << daemon.Threads() << ' '
          << Percentile(latencies, 50) * 1000 << ' ' << Percentile(latencies, 99) * 1000 << ' '
          << longest_answer_.exchange(0) << std::endl;
  }

  std::ofstream file_{Argument(2, "/dev/null")};
  const Clock::time_point began_ = Clock::now();
  std::atomic<double> longest_answer_ = 0;
};

}  // namespace

TEST_F(BusySite, LosesNothingButWhatACableTakes) {
  StartLoad({"--card", "B=lcd", "--card", "C=motor"});
  {
    const std::jthread console([this] { WorkAtConsole(); });
    const std::jthread visitor([this] { ComeAndGo(); });
    RunLoad(std::stod(Argument(1, "30")), [this](long write) { OnWrite(write); });
    EndLoad();
    over = true;
  }
  PrintReports();
  std::printf("outputs: %ld writes, %ld of them missing; %ld texts, %zu came\n", writes.load(),
              MissingWrites(), texts, WritesTo("B").size());
  std::printf("console: %ld lines, %ld bad answers, %ld card requests without an answer\n", lines,
              bad_answers, unanswered);
  std::printf("%ld monitor sessions; %ld cable pulls, %d exchanges timed out\n", sessions, pulls,
              ExchangeTimeouts());
  ExpectGoodReports();
  EXPECT_EQ(bad_answers, 0);
  EXPECT_LE(unanswered, ExchangeTimeouts());  // asked while the cable was out
  // One frame at most for each pull: it was under way.
  const long missing_texts = texts - static_cast<long>(WritesTo("B").size());
  EXPECT_LE(MissingWrites() + missing_texts, ExchangeTimeouts());
  EXPECT_EQ(daemon.Threads(), 5);
}
