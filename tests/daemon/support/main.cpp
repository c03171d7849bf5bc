// The tests' main: their own `sleep` and `ls` ahead on PATH, a network of their own
// where that is allowed, and death tests that start the program anew, since threads
// run in many of them.
#include <gtest/gtest.h>
#include <net/if.h>
#include <sched.h>
#include <sys/ioctl.h>
#include <sys/socket.h>
#include <unistd.h>

#include <cstdlib>
#include <cstring>
#include <string>

#include "kit/SleepControl.h"

namespace {

void PutToolsAheadOnPath() {
  const char* path = std::getenv("PATH");
  const std::string with_ls = std::string(TOOLS_FOLDER) + ":" + (path != nullptr ? path : "");
  setenv("PATH", WithShortSleep(with_ls).c_str(), 1);
}

// Ports that nobody else can take, and that nobody outside can reach.
void EnterOwnNetwork() {
  if (unshare(CLONE_NEWNET) != 0) return;
  const int any = socket(AF_INET, SOCK_DGRAM, 0);
  ifreq loopback{};
  std::strcpy(loopback.ifr_name, "lo");
  loopback.ifr_flags = IFF_UP | IFF_RUNNING;
  ioctl(any, SIOCSIFFLAGS, &loopback);
  close(any);
}

}  // namespace

int main(int argc, char** argv) {
  testing::InitGoogleTest(&argc, argv);
  testing::GTEST_FLAG(death_test_style) = "threadsafe";
  PutToolsAheadOnPath();
  EnterOwnNetwork();
  return RUN_ALL_TESTS();
}
