// What the daemon promises, of a release build.
#include "Pace.h"

namespace {

constexpr char kQelm[] = "qelm";
constexpr char kFloor[] = "floor";
constexpr char kShipped[] = "ser2net, as shipped";

struct Row {
  const char* measure;
  const char* other;  // the limit is one of the ratio to this system; nullptr: of the value
  double percent;     // of the values; 50 is the median
  bool at_least;
  double limit;
};

constexpr Row kRows[] = {
    {"command latency, wired", kFloor, 50, false, 1.9},
    {"command latency", kFloor, 50, false, 3.5},
    {"command latency, wired", nullptr, 99, false, 700},
    {"command latency", nullptr, 99, false, 700},
    {"input latency, one card polled, wired", kFloor, 50, false, 2.0},
    {"input latency, ten cards polled, wired", kFloor, 50, false, 1.2},
    {"input latency, ten cards polled", kShipped, 50, false, 0.1},
    {"exchanges, ten cards polled, wired", kFloor, 50, true, 0.95},
    {"commands, one at a time, wired", kFloor, 50, true, 0.6},
    {"commands, six cards, wired", nullptr, 50, true, 3400},
    {"idle: processor", nullptr, 50, false, 70},
    {"SPEED=1: command latency, wired", nullptr, 50, false, 8000},
    {"SPEED=1: command latency, wired", nullptr, 99, false, 16000},
    {"SPEED=1: commands, one card, wired", nullptr, 50, true, 180},
    {"SPEED=1: idle: processor", nullptr, 50, false, 3},
    {"SPEED=1: idle: wake-ups", nullptr, 50, false, 1400},
    {"resident memory at the end", nullptr, 50, false, 4096},
    {"threads", nullptr, 50, false, 5},
    {"start to listening", nullptr, 50, false, 30},
};

}  // namespace

std::vector<Bar> PaceBars(const Results& results) {
  std::vector<Bar> bars;
  for (const Row& row : kRows) {
    std::string text = row.measure;
    if (row.percent != 50) text += ", 99th percentile";
    if (row.other != nullptr) text += std::string(", to ") + row.other;
    const double value = row.other != nullptr ? results.Ratio(row.measure, kQelm, row.other)
                                              : results.Percentile(row.measure, kQelm, row.percent);
    bars.push_back({text, value, row.limit, row.at_least});
  }
  return bars;
}
