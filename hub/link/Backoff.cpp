#include "link/Backoff.h"

#include <algorithm>
#include <cstdint>
#include <utility>

namespace hub::link {

std::chrono::milliseconds Backoff::Next() {
  const auto pause = std::exchange(next_, std::min(next_ * 2, longest_));
  std::uniform_int_distribution<int64_t> jitter(0, pause.count() / 4);
  return pause - std::chrono::milliseconds(jitter(chance_));
}

}  // namespace hub::link
