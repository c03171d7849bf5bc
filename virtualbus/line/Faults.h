// What can go wrong on the line, on demand. Chances come from one seeded generator, so that the
// same seed and the same frames give the same faults.
#pragma once

#include <chrono>
#include <cstdint>
#include <random>
#include <string>
#include <vector>

#include "base/Loop.h"
#include "base/Text.h"

namespace virtualbus {

class Faults {
 public:
  struct Shaped {
    Bytes line;  // with the length byte
    Clock::duration delay{};
    size_t pieces = 1;
    std::string note;  // what was done to the reply; empty if nothing
  };

  explicit Faults(uint32_t seed) : random_(seed) {}

  void Mute(Clock::duration time) { muted_until_ = Clock::now() + time; }
  void DropNext(long frames) { drops_ = frames; }
  void WrongLength(long replies) { wrong_lengths_ = replies; }
  void WrongAddress(long replies) { wrong_addresses_ = replies; }
  void Late(Clock::duration delay) { delay_ = delay; }
  void Split(size_t pieces) { pieces_ = pieces; }
  void Noise(double chance) { noise_ = chance; }
  void Off();

  // Those that are on, as the control lines that switch them on: "late 40ms".
  std::vector<std::string> InEffect() const;

  Bytes Garbage(size_t count);

  // Why this frame never reaches the adapter; empty if it does.
  std::string WhyLost();
  Shaped Shape(const Bytes& reply);

 private:
  std::mt19937 random_;
  Time muted_until_{};
  long drops_ = 0;
  long wrong_lengths_ = 0;
  long wrong_addresses_ = 0;
  Clock::duration delay_{};
  size_t pieces_ = 1;
  double noise_ = 0.0;
  bool noise_hits_reply_ = false;
};

}  // namespace virtualbus
