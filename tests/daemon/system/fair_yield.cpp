// Preloaded into the daemon: a sched_yield() that lets other programs run.
// The daemon spins on the bus while it waits for a reply, in a session and so
// in a scheduling group of its own, where yielding gives way to nobody else.
// On a busy machine it can thus starve the very kernel thread that carries the
// bytes of a pseudo terminal. A short sleep now and then does give way, and
// leaves the daemon's count of reads as it is.
#include <sched.h>
#include <stdlib.h>
#include <time.h>

#include <atomic>

extern "C" int sched_yield() noexcept {
  constexpr unsigned kYieldsPerSleep = 8;
  static std::atomic<unsigned> yields;
  if (++yields % kYieldsPerSleep == 0) {
    const timespec shortest{0, 1000};
    nanosleep(&shortest, nullptr);
  }
  return 0;
}

// The daemon alone: the loader of a child may be that of another machine, and complain.
__attribute__((constructor)) static void LeaveTheChildrenAlone() { unsetenv("LD_PRELOAD"); }
