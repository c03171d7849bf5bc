// What takes minutes, and what is measured: see tests/README.md.
#include <cstdio>

#include "PowerCuts.h"
#include "StoreTest.h"
#include "kit/Proc.h"

namespace hub::store {
namespace {

class StoreLongRuns : public StoreTest {
 protected:
  // Ten channels, a change each of so many seconds. The first of a minute finds that it is time to
  // write the minute before.
  void AddMinute(int every, uint64_t may_wait = 10) {
    for (int second = 0; second < 60; second += every) {
      for (unsigned channel = 0; channel < 10; ++channel)
        Add(static_cast<double>((level_ += channel * 7 + 1) % 256), {channel, channel});
      if (second == 0) Written(may_wait);
      clock.Pass(std::chrono::seconds(every));
    }
  }

  void TellQuery(const char* name, std::chrono::milliseconds span) {
    const auto start = std::chrono::steady_clock::now();
    const History history = Read({4, 4}, clock.Now() - span, clock.Now(), 500);
    const std::chrono::duration<double, std::milli> took = std::chrono::steady_clock::now() - start;
    std::printf("%-10s %5.1f ms  step %lld s, %zu points\n", name, took.count(),
                static_cast<long long>(history.step_ms / 1000), history.points.size());
    EXPECT_LE(history.points.size(), 500u);
    EXPECT_GE(history.points.size(), 100u);
  }

  unsigned level_ = 0;
};

TEST_F(StoreLongRuns, TwoHundredPowerCuts) { CutPower(options.folder, 200); }

TEST_F(StoreLongRuns, ADayOfTenChannelsAChangeASecondIsTwentyFiveMegabytes) {
  Start();
  const long before = StatusNumber("/proc/self/io", "write_bytes:");
  for (int minute = 0; minute < 24 * 60; ++minute) AddMinute(1);
  const long bytes = StatusNumber("/proc/self/io", "write_bytes:") - before;
  std::printf("written in a day: %.1f MB, told %.1f MB; the file: %.1f MB\n",
              static_cast<double>(bytes) / 1e6,
              static_cast<double>(store->Count().bytes_written) / 1e6,
              static_cast<double>(std::filesystem::file_size(File())) / 1e6);
  EXPECT_LE(bytes, 25'000'000);
}

TEST_F(StoreLongRuns, AYearIsAskedForEachSpan) {
  options.folder = "/run/year";  // of the sandbox, in memory: a disk takes hours to write so often
  Start();
  // Of what is older than a week, nobody can see any more in which pieces it was written.
  for (int minute = 0; minute < 351 * 24 * 60; ++minute) AddMinute(30, 40'000);
  Restart();  // all is written, and a minute begins
  for (int minute = 0; minute < 14 * 24 * 60; ++minute) AddMinute(5);
  std::printf("the file: %.1f MB\n", static_cast<double>(std::filesystem::file_size(File())) / 1e6);
  TellQuery("10 minutes", 10min);
  TellQuery("hour", 1h);
  TellQuery("8 hours", 8h);
  TellQuery("day", 24h);
  TellQuery("week", 7 * 24h);
  TellQuery("20 days", 20 * 24h);
  TellQuery("month", 31 * 24h);
  TellQuery("quarter", 92 * 24h);
  TellQuery("year", 365 * 24h);
  Restart();
  TellQuery("year, cold", 365 * 24h);
}

}  // namespace
}  // namespace hub::store
