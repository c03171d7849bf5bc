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

// The shell could not run its command. Killed, or gone where SIGCHLD is ignored, it had
// begun.
bool HasFailed(int wait_status) {
  constexpr int kKilled = 128;  // the shell tells the end of its child so, and above
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

  // Close-on-exec: the children of other threads must not hold this pipe.
  FILE* pipe = popen(command.data(), "re");
  if (pipe != nullptr && !HasFailed(pclose(pipe))) return;
  // Without a shell the pause must hold all the same, or every retry becomes a busy loop.
  if (seconds > 0) sleep(static_cast<unsigned int>(seconds));
}
