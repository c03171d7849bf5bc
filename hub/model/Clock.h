// The time, from one place, so that hours pass in a test. The real clock is the default; a test
// gives its own. One thread.
#pragma once

#include <chrono>

#include "model/Change.h"

namespace hub::model {

using SteadyTime = std::chrono::steady_clock::time_point;

class Clock {
 public:
  virtual ~Clock() = default;
  virtual Time Now() const { return std::chrono::system_clock::now(); }           // may jump
  virtual SteadyTime Steady() const { return std::chrono::steady_clock::now(); }  // never does
};

}  // namespace hub::model
