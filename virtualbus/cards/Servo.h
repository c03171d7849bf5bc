// Six RC servos. A servo goes to its position, but never past its two end positions.
#pragma once

#include <array>

#include "cards/Card.h"

namespace virtualbus {

class Servo : public Card {
 public:
  static constexpr size_t kChannelCount = 6;

  Servo();
  void PowerUp() override;
  bool Write(std::span<const uint8_t> data) override;

  uint8_t Reached(size_t channel) const;  // where the arm stands
  std::vector<std::string> Show() const override;

 private:
  using Channels = std::array<uint8_t, kChannelCount>;

  Channels positions_{};  // as commanded
  Channels end_a_{};      // no command stores the ends: a set one is kept at once
  Channels end_b_{};
  Channels stored_{};
};

}  // namespace virtualbus
