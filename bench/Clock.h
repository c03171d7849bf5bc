// Wall clock time everywhere: it is what the kernel stamps datagrams with.
#pragma once

#include <chrono>
#include <functional>
#include <stdexcept>
#include <string>
#include <thread>

#include "kit/Wait.h"

using Clock = std::chrono::system_clock;
using Time = Clock::time_point;
using std::chrono::microseconds;
using std::chrono::milliseconds;

inline double Microseconds(Clock::duration time) {
  return std::chrono::duration<double, std::micro>(time).count();
}
inline double Seconds(Clock::duration time) { return std::chrono::duration<double>(time).count(); }

// Looks again and again, and gives up loudly.
inline void Await(const std::string& what, const std::function<bool()>& holds,
                  microseconds pause = milliseconds(2)) {
  for (const Time end = Clock::now() + kPatience; !holds(); std::this_thread::sleep_for(pause))
    if (Clock::now() > end) throw std::runtime_error("waited in vain for " + what);
}
