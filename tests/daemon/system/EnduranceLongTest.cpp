// The long runs, by name: each takes minutes.
#include <filesystem>

#include "Endurance.h"

TEST_F(Endurance, FiveHundredStartsBringEveryThreadUp) {
  adapter.Plug();
  for (int start = 0; start < 500 && !HasFailure(); ++start) {
    std::filesystem::remove(kLogFile);
    StartDaemon({.environment = {{"QELM_TEST_SLEEP_DIVISOR", "1000"}}});
    for (const char* name : {"CAE", "IO", "MON"}) {
      ExpectLog("INF", std::string(name) + " interface is waiting for incoming connection");
    }
    ExpectLog("INF", "try to catch hardware on /dev/ttyUSB0");
    StopDaemon();
    DaemonProcess::EndOrphans();
  }
}

TEST_F(Endurance, ThousandSessionsOnEachPortLeaveNothingBehind) { UseAndResetSessions(1000); }
