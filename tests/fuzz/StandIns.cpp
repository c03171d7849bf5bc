// These names are the daemon's own and the C library's. The linker takes the first
// definition it meets, and this file stands ahead of both.
#include "StandIns.h"

#include <syslog.h>
#include <unistd.h>

#include <utility>

#include "runtime/Fatal.h"
#include "runtime/Pause.h"

namespace {

std::function<void()> pause_action;

}  // namespace

void DuringPauses(std::function<void()> action) { pause_action = std::move(action); }

void EndAtLimit(const char* limit) { throw ProcessEnd{limit}; }

// Also waits for a thread that is to end: it must get the processor.
void Sleep(unsigned int /*units*/) { usleep(10); }

void SleepMicroseconds(int /*microseconds*/) {}

void sleepsec(int /*seconds*/) {
  if (pause_action) pause_action();
}

extern "C" void syslog(int /*priority*/, const char* /*format*/, ...) {}
