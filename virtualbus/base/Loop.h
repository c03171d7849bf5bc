// The one loop of the program: descriptors and timers, each with what to do when it is due.
// Callbacks may watch, unwatch, set and cancel as they like; everything runs on one thread.
#pragma once

#include <chrono>
#include <cstdint>
#include <functional>
#include <map>
#include <utility>

namespace virtualbus {

using Clock = std::chrono::steady_clock;
using Time = Clock::time_point;

class Loop {
 public:
  using Callback = std::function<void()>;
  using TimerId = uint64_t;  // 0 is no timer

  void Watch(int fd, Callback on_readable);
  void Unwatch(int fd);

  TimerId At(Time when, Callback on_due);
  TimerId After(Clock::duration wait, Callback on_due) {
    return At(Clock::now() + wait, std::move(on_due));
  }
  void Cancel(TimerId& timer);  // sets it to 0

  void Run();  // returns after Stop()
  void Stop() { running_ = false; }

 private:
  void Wait();
  void RunDueTimers();

  bool running_ = true;
  TimerId last_timer_ = 0;
  std::map<int, Callback> watched_;
  std::map<std::pair<Time, TimerId>, Callback> timers_;
};

}  // namespace virtualbus
