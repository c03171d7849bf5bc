// Writes down where the code under test leaves the processor to others while it waits
// for a reply. It neither yields nor sleeps meanwhile, so that no test depends on what
// else the machine does. One at a time.
#pragma once

#include <vector>

#include "support/MockBus.h"

class GiveWayRecord {
 public:
  explicit GiveWayRecord(const MockBus& bus);
  ~GiveWayRecord();
  GiveWayRecord(const GiveWayRecord&) = delete;
  GiveWayRecord& operator=(const GiveWayRecord&) = delete;

  std::vector<long> yield_reads;       // how many reads came before each yield
  std::vector<unsigned> microseconds;  // of each sleep

  void Yield() { yield_reads.push_back(bus_.Reads()); }
  void Sleep(unsigned time) { microseconds.push_back(time); }

 private:
  const MockBus& bus_;
};
