#include "support/GiveWayRecord.h"

#include <unistd.h>

#include <atomic>

namespace {

std::atomic<GiveWayRecord*> active{nullptr};

}  // namespace

// The linker leads every yield and every usleep of the code under test here.
extern "C" {
int __real_sched_yield();
int __wrap_sched_yield();
int __real_usleep(useconds_t microseconds);
int __wrap_usleep(useconds_t microseconds);

int __wrap_sched_yield() {
  GiveWayRecord* record = active;
  if (record == nullptr) return __real_sched_yield();
  record->Yield();
  return 0;
}

int __wrap_usleep(useconds_t microseconds) {
  GiveWayRecord* record = active;
  if (record == nullptr) return __real_usleep(microseconds);
  record->Sleep(microseconds);
  return 0;
}
}

GiveWayRecord::GiveWayRecord(const MockBus& bus) : bus_(bus) { active = this; }

GiveWayRecord::~GiveWayRecord() { active = nullptr; }
