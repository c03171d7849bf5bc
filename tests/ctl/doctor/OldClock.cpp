// To be loaded before a program: for it, the clock is one that was never set.
#include <sys/syscall.h>
#include <time.h>
#include <unistd.h>

extern "C" int clock_gettime(clockid_t clock, timespec* now) noexcept {
  constexpr time_t kLongAgo = 1'000'000'000;  // 2001-09-09 01:46:40, UTC
  const auto result = syscall(SYS_clock_gettime, clock, now);
  if (clock == CLOCK_REALTIME) now->tv_sec = kLongAgo;
  return static_cast<int>(result);
}
