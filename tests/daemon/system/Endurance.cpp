#include "Endurance.h"

#include <algorithm>

namespace {

// What an allocator may keep aside; a session that leaked would show many times this.
constexpr long kAllowedGrowthKilobytes = 1024;

}  // namespace

bool Endurance::HoldsSevenDescriptors() {
  const auto targets = daemon.Descriptors();
  return std::count_if(targets.begin(), targets.end(),
                       [](const std::string& target) { return !target.starts_with("pipe:"); }) == 7;
}

void Endurance::UseAndReset(Port port, const char* name, int session) {
  Client client = Connect(port);
  client.Send(port == kCae ? "DRVVER\r\n" : "a0b0d00\r\n");
  if (port == kCae) client.ExpectBytes("CIA: DRIVER VERSION 1.20\r\n\r>\r\n\r");
  client.Reset();
  ExpectLog("INF", std::string("connection is closed by client on ") + name + " interface",
            session);
}

void Endurance::UseAndResetSessions(int count) {
  WriteConfig({.poll = "TRUE"});
  PlugCard(3, kDigitalInput);
  StartOnBus({.environment = {{"QELM_TEST_SLEEP_DIVISOR", "1000"}}});
  cae.Reset();
  ExpectLog("INF", "connection is closed by client on CAE interface");
  const auto session = [this](int number) {
    UseAndReset(kCae, "CAE", number + 1);
    UseAndReset(kIo, "IO", number);
    UseAndReset(kMon, "MON", number);
  };
  session(1);
  EXPECT_TRUE(WaitUntil([&] { return HoldsSevenDescriptors(); }));
  const int threads = daemon.Threads();
  const long memory = daemon.ResidentKilobytes();
  for (int number = 2; number <= count; ++number) session(number);
  EXPECT_TRUE(WaitUntil([&] { return HoldsSevenDescriptors(); })) << daemon.Descriptors().size();
  EXPECT_EQ(daemon.Threads(), threads);
  if (!daemon.Instrumented()) {
    EXPECT_LE(daemon.ResidentKilobytes(), memory + kAllowedGrowthKilobytes);
  }
  adapter.ForgetFrames();
  adapter.ExpectCount({0x20, 3}, 10);
  EXPECT_EQ(CountLogged("[INF] hardware found on /dev/ttyUSB0 version: v1.2"), 1);
}
