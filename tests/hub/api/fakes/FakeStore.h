// A store in memory, seen by the test. Its definitions of hub::store::Store take the place of the
// real ones in this program.
#pragma once

#include <array>
#include <cstdint>
#include <map>
#include <string>
#include <vector>

#include "model/Journal.h"

struct FakeStore {
  FakeStore() { now = this; }
  ~FakeStore() { now = nullptr; }
  FakeStore(const FakeStore&) = delete;
  FakeStore& operator=(const FakeStore&) = delete;

  std::map<std::string, std::string, std::less<>> documents;
  std::vector<std::string> journal;  // "command operator: 5.0: on"

  // What is answered, and what was asked: "F.3 1000 2000 500", in ms; "17 100".
  int64_t step_ms = 0;
  std::vector<std::array<double, 4>> points;  // time in ms, mean, min, max
  bool is_busy = false;                       // answers nothing
  std::string asked_history;
  std::vector<hub::model::JournalEntry> entries;
  uint64_t lost = 0;
  std::string asked_journal;

  static FakeStore* now;
};
