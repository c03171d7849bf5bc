#include "protocol/Pace.h"

#include <algorithm>

namespace hub::protocol {

namespace {

constexpr Microseconds kLongestPause{5000};
constexpr Microseconds kShortestPause{1};

// The system's own share of a pause, as measured on the boards: a sleep of 1 us lasts so long.
constexpr Microseconds kWakeUp{70};

// An exchange of a few bytes at 460800 baud, and the adapter's own time.
constexpr Microseconds kExchange{300};

}  // namespace

Microseconds RoundPause(int percent) {
  const int within = std::clamp(percent, kSlowestPace, kFastestPace);
  return kLongestPause -
         (kLongestPause - kShortestPause) * (within - kSlowestPace) / (kFastestPace - kSlowestPace);
}

int PercentOf(Microseconds pause) {
  const Microseconds within = std::clamp(pause, kShortestPause, kLongestPause);
  const Microseconds range = kLongestPause - kShortestPause;
  const long steps = kFastestPace - kSlowestPace;
  return kSlowestPace + static_cast<int>(((kLongestPause - within) * steps + range / 2) / range);
}

Microseconds RoundTime(Microseconds pause, size_t frames_a_round) {
  return pause + kWakeUp + kExchange * static_cast<long>(std::max<size_t>(frames_a_round, 1));
}

}  // namespace hub::protocol
