#include "runtime/Pause.h"

#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cstdio>
#include <ctime>
#include <string>

#include "runtime/Fatal.h"
#include "runtime/Values.h"

namespace {

// True when the shell could not run its command. A shell that was killed had begun to, and
// so had one whose end cannot be read because SIGCHLD is ignored.
bool HasFailed(int wait_status) {
  constexpr int kKilled = 128;  // the shell exits with this or more when a signal ends its child
  if (wait_status == -1 || !WIFEXITED(wait_status)) return false;
  return WEXITSTATUS(wait_status) > 0 && WEXITSTATUS(wait_status) < kKilled;
}

}  // namespace

void Sleep(unsigned int units) {
  constexpr unsigned int kUnitsPerSecond = 10'000'000;
  timespec time{};
  time.tv_sec = static_cast<time_t>(units / kUnitsPerSecond);
  time.tv_nsec = static_cast<long>(units % kUnitsPerSecond) * 100;
  nanosleep(&time, nullptr);
}

void SleepMicroseconds(int microseconds) {
  if (microseconds > 0) usleep(static_cast<useconds_t>(microseconds));
}

void sleepsec(int seconds) {
  std::array<char, 100> command{};
  const int length =
      std::snprintf(command.data(), command.size(), "sleep %s", ITOA(seconds).c_str());
  if (length >= static_cast<int>(command.size())) EndAtLimit("sleep command over 99 characters");

  // "e": a child that another thread forks meanwhile must not keep this pipe open.
  FILE* pipe = popen(command.data(), "re");
  if (pipe != nullptr && !HasFailed(pclose(pipe))) return;
  // Without a shell, pause all the same: otherwise every retry becomes a busy loop.
  if (seconds > 0) sleep(static_cast<unsigned int>(seconds));
}
