// Three DC motors, driven by a byte each and one control byte for all.
// With a silent range the byte 80 is standstill and the range around it is silent. A silent range
// of 00 is manual mode: the byte is the speed, and the channel's bit of the control byte its
// direction.
#pragma once

#include <array>

#include "cards/Card.h"

namespace virtualbus {

class Motor : public Card {
 public:
  static constexpr size_t kChannelCount = 3;
  static constexpr int kFullSpeed = 255;

  Motor();
  void PowerUp() override;
  bool Write(std::span<const uint8_t> data) override;

  int Speed(size_t channel) const;  // -255 to 255, backward below 0
  std::vector<std::string> Show() const override;

 private:
  std::array<uint8_t, kChannelCount + 1> drive_{};  // the last one is the control byte
  std::array<uint8_t, kChannelCount> silent_{};
  std::array<uint8_t, kChannelCount> stored_{};
};

}  // namespace virtualbus
