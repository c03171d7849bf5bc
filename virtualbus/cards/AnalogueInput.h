// Six analogue channels of a byte each. A channel whose bit is set in the mask reads 0.
#pragma once

#include <array>

#include "cards/Card.h"

namespace virtualbus {

class AnalogueInput : public Card {
 public:
  static constexpr size_t kChannelCount = 6;

  AnalogueInput();
  void PowerUp() override;
  Bytes Poll() override;
  std::span<uint8_t> Inputs() override;

  uint8_t Value(size_t channel) const { return values_[channel]; }
  bool IsMasked(size_t channel) const { return (mask_[0] >> channel & 1) != 0; }

 private:
  std::array<uint8_t, kChannelCount> values_{};  // as applied from outside, masked or not
  std::array<uint8_t, 1> mask_{};
  std::array<uint8_t, 1> stored_mask_{};
};

}  // namespace virtualbus
