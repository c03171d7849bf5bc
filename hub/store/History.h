// What the store answers: curves, and pages of the journal.
#pragma once

#include <cstdint>
#include <limits>
#include <optional>
#include <vector>

#include "model/Change.h"
#include "model/Journal.h"

namespace hub::store {

// One point of a curve: the values in one step of time.
struct Point {
  model::Time time;  // where the step begins
  double mean = 0;   // of the values that came, each counting the same
  double min = 0;
  double max = 0;
};

struct History {
  int64_t step_ms = 0;        // 0: values as they came
  std::vector<Point> points;  // by time; a step without a value has none
};

// A page of the journal: `limit` entries between two numbers, both left out. Where only `after` is
// given, the oldest of them: the next page goes on behind the last one. Else the newest.
struct JournalSpan {
  std::optional<uint64_t> after;
  uint64_t before = std::numeric_limits<uint64_t>::max();
  size_t limit = 100;
};

struct JournalPage {
  std::vector<model::JournalEntry> entries;  // oldest first
  uint64_t lost = 0;                         // in the span up to the page's end, no longer kept
};

}  // namespace hub::store
