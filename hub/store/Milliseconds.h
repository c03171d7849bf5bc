// Times as they stand on the disk: milliseconds since 1970.
#pragma once

#include <chrono>
#include <cstdint>

#include "model/Change.h"

namespace hub::store {

inline int64_t ToMilliseconds(model::Time time) {
  return std::chrono::floor<std::chrono::milliseconds>(time.time_since_epoch()).count();
}

inline model::Time ToTime(int64_t milliseconds) {
  return model::Time(std::chrono::milliseconds(milliseconds));
}

}  // namespace hub::store
