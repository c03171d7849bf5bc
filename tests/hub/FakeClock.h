// A clock that stands until a test moves it. It begins on 2026-11-21 at 12:00 UTC.
#pragma once

#include "model/Clock.h"

namespace hub {

class FakeClock : public model::Clock {
 public:
  model::Time Now() const override { return now_; }
  model::SteadyTime Steady() const override { return steady_; }

  void Pass(std::chrono::milliseconds time) {
    now_ += time;
    steady_ += time;
  }

  // Somebody sets the time of day.
  void Jump(std::chrono::milliseconds by) { now_ += by; }

 private:
  model::Time now_{std::chrono::seconds(1'795'262'400)};
  model::SteadyTime steady_{std::chrono::hours(1)};
};

}  // namespace hub
