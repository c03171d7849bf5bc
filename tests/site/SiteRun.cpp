// A noisy line for so many minutes: one exchange in a thousand loses a byte. Prints what
// was counted.
//   site_run [MINUTES]
#include <cstdio>
#include <cstdlib>

#include "SiteLoad.h"
#include "kit/Proc.h"

namespace {

constexpr std::chrono::milliseconds kPause{10};

class SiteRun : public SiteLoad {
 protected:
  // Each write must come to the adapter, in order, also those that noise takes there.
  void WatchWrites(virtualbus::Script& script) {
    for (long write = 0; !over || write < writes; ++write) {
      while (write >= writes && !over) std::this_thread::sleep_for(kPause);
      if (write >= writes) return;
      if (script.Order("wait frame 10 0A 02 " + ValueOf(write) + " within 9s") != "ok")
        ++unseen_writes;
    }
  }

  void PrintMemory(const char* when) {
    std::printf("resident at the %s: qelm %ld KiB, qelm-bus %ld KiB\n", when,
                daemon.ResidentKilobytes(), ResidentKilobytesOf(bus->Pid()));
    std::fflush(stdout);
  }

  std::atomic<bool> over = false;
  long unseen_writes = 0;
};

}  // namespace

TEST_F(SiteRun, LosesNothing) {
  StartLoad({"--seed", "1"});
  PrintMemory("start");
  virtualbus::Script script(kControlPath);
  script.Order("mark");
  Bus("noise 0.1%");
  {
    std::jthread watcher([&] { WatchWrites(script); });
    RunLoad(std::stod(Argument(1, "20")), [](long) {});
    Bus("noise 0%");
    over = true;
    EndLoad();
  }
  PrintMemory("end");
  std::printf("%s", Bus("status").c_str());
  PrintReports();
  std::printf("outputs: %ld writes, %ld never came to the adapter, %d lost on the line there\n",
              writes.load(), unseen_writes, WritesLostOnTheLine("A"));
  std::printf("link: %d exchanges timed out, opened again %d times\n", ExchangeTimeouts(),
              CountLogged("[INF] hardware found on /dev/ttyUSB0 version: v1.2") - 1);
  ExpectGoodReports();
  EXPECT_EQ(unseen_writes, 0);
  EXPECT_LE(WritesLostOnTheLine("A"), ExchangeTimeouts());
}
