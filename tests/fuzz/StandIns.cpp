// The daemon and the C library define these functions too. The linker takes the first
// definition it meets, and this file comes before theirs.
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

// The code under test also waits with it for a thread to end, which needs the processor.
void Sleep(unsigned int /*units*/) { usleep(10); }

void SleepMicroseconds(int /*microseconds*/) {}

void sleepsec(int /*seconds*/) {
  if (pause_action) pause_action();
}

extern "C" void syslog(int /*priority*/, const char* /*format*/, ...) {}
