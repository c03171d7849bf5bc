#include "config/Speed.h"

#include <algorithm>
#include <limits>

int SpeedDelay(long percent) {
  // 4999 and not 5000 leaves a pause of 1 microsecond at 100 percent. Single precision, in
  // this order, gives the same microsecond on every board.
  const float delay = (static_cast<float>(percent) * -4999.0F + 500000.0F) / 99.0F;
  constexpr auto kLimit = static_cast<double>(std::numeric_limits<int>::max());
  return static_cast<int>(std::clamp(static_cast<double>(delay), -kLimit, kLimit));
}
