// A key matrix and a rotary encoder in one byte: bits 0 to 5 the code of the key held (00 none),
// bits 6 and 7 the encoder's two contacts, which change one at a time as it turns.
// Turned faster than the host polls, the encoder gives one step to each poll, so none is lost.
#pragma once

#include <array>

#include "cards/Card.h"

namespace virtualbus {

class Keys : public Card {
 public:
  static constexpr uint8_t kLastKey = 0x3F;

  Keys();
  void PowerUp() override;
  Bytes Poll() override;
  std::span<uint8_t> Inputs() override;
  bool Press(uint8_t key) override;
  bool Release(std::optional<uint8_t> key) override;
  bool Turn(int steps) override;

  uint8_t Key() const { return state_[0] & kLastKey; }
  int Position() const { return position_; }  // steps turned since the start, to the right above 0

 private:
  void Step();

  std::array<uint8_t, 1> state_{};
  int position_ = 0;
  int waiting_steps_ = 0;
};

}  // namespace virtualbus
