// How fast the daemon is here, as a table; it asserts nothing of speed. Every
// figure includes the waking of this program's own threads.
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <fstream>
#include <functional>
#include <vector>

#include "DaemonTest.h"

namespace {

using Clock = std::chrono::steady_clock;

double Milliseconds(Clock::duration time) {
  return std::chrono::duration<double, std::milli>(time).count();
}

void PrintSpread(const char* name, int count, const std::function<void(int)>& once) {
  std::vector<double> times;
  for (int i = 0; i < count; ++i) {
    const auto start = Clock::now();
    once(i);
    times.push_back(Milliseconds(Clock::now() - start));
  }
  std::sort(times.begin(), times.end());
  const std::size_t last = times.size() - 1;
  std::printf("  %-36s median %7.3f ms   99th percentile %7.3f ms\n", name, times[last / 2],
              times[last * 99 / 100]);
}

std::string Hex(int value) {
  char text[3];
  std::snprintf(text, sizeof text, "%02X", static_cast<unsigned>(value) & 0xFFU);
  return text;
}

}  // namespace

class Pace : public DaemonTest {
 protected:
  void Measure(const std::string& percent) {
    PlugCard(3, kDigitalInput);
    PlugCard(5, kDigitalOutput);
    // Without the stand-in for sched_yield: as it runs in the field.
    StartOnBus({.quick = false, .environment = {{"LD_PRELOAD", ""}}});
    Command("SPEED=" + percent, "CIA: SPEED IS SET to " + percent + "%\r\n\r");
    Client io = Connect(kIo);
    std::printf("SPEED=%s\n", percent.c_str());
    PrintIdle("idle, not polling");
    MeasureCommands(io);
    Command("ENABLEPOLL", "CIA: GLOBAL POLLING IS ENABLED\r\n\r");
    MeasureInputs(io);
    PrintIdle("one card polled");
    std::printf("  %-36s %ld KiB, %d threads\n", "resident memory", daemon.ResidentKilobytes(),
                daemon.Threads());
  }

 private:
  void MeasureCommands(Client& io) {
    PrintSpread("IO line to frame at the adapter", 1000, [&](int i) {
      io.Send("a5b0d" + Hex(i) + "\r\n");
      adapter.ExpectFrame({0x10, 5, 2, static_cast<std::uint8_t>(i), 0xFF});
    });
  }

  void MeasureInputs(Client& io) {
    PrintSpread("input change to report at the client", 1000, [&](int i) {
      adapter.SetInputs(3, {static_cast<std::uint8_t>(i + 1), 0});
      io.ExpectBytes("a3b0d" + Hex(i + 1) + "\r\n\r");
    });
  }

  // Processor time of the daemon over two seconds in which nothing is asked of it.
  void PrintIdle(const char* name) {
    const double before = ProcessorSeconds();
    sleep(2);
    std::printf("  %-36s %.1f %% of a core\n", name, (ProcessorSeconds() - before) / 2 * 100);
  }

  double ProcessorSeconds() const {
    std::string field;
    std::ifstream stat("/proc/" + std::to_string(daemon.Pid()) + "/stat");
    long user = 0;
    long system = 0;
    for (int i = 0; i < 13; ++i) stat >> field;
    stat >> user >> system;
    return static_cast<double>(user + system) / static_cast<double>(sysconf(_SC_CLK_TCK));
  }
};

TEST_F(Pace, AtFullSpeed) { Measure("100"); }

TEST_F(Pace, AtLowestSpeed) { Measure("1"); }
