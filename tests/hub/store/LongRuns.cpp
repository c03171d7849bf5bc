// What takes minutes, and what is measured: see tests/README.md.
#include <cstdio>

#include "PowerCuts.h"
#include "StoreTest.h"
#include "Year.h"
#include "kit/Proc.h"

namespace hub::store {
namespace {

class StoreLongRuns : public StoreTest {
 protected:
  void TellQuery(const char* name, std::chrono::milliseconds span) {
    const auto start = std::chrono::steady_clock::now();
    const History history = Read({4, 4}, clock.Now() - span, clock.Now(), 500);
    const std::chrono::duration<double, std::milli> took = std::chrono::steady_clock::now() - start;
    std::printf("%-10s %5.1f ms  step %lld s, %zu points\n", name, took.count(),
                static_cast<long long>(history.step_ms / 1000), history.points.size());
    EXPECT_LE(history.points.size(), 500u);
    EXPECT_GE(history.points.size(), 100u);
  }
};

TEST_F(StoreLongRuns, TwoHundredPowerCuts) { CutPower(options.folder, 200); }

TEST_F(StoreLongRuns, ADayOfTenChannelsAChangeASecondIsTwentyFiveMegabytes) {
  Start();
  TenChannels channels(clock);
  const long before = StatusNumber("/proc/self/io", "write_bytes:");
  for (int minute = 0; minute < 24 * 60; ++minute)
    channels.AddMinute(*store, 1, [this] { Written(10); });
  const long bytes = StatusNumber("/proc/self/io", "write_bytes:") - before;
  std::printf("written in a day: %.1f MB, told %.1f MB; the file: %.1f MB\n",
              static_cast<double>(bytes) / 1e6,
              static_cast<double>(store->Count().bytes_written) / 1e6,
              static_cast<double>(std::filesystem::file_size(File())) / 1e6);
  EXPECT_LE(bytes, 25'000'000);
}

TEST_F(StoreLongRuns, AYearIsAskedForEachSpan) {
  options.folder = "/run/year";  // of the sandbox, in memory
  AddYear(options, clock);
  Start();
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
