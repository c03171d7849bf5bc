// 16 input lines in two blocks; a pressed line reads 1. The lines are driven from outside, so a
// reboot of the card does not change them.
#pragma once

#include <array>

#include "cards/Card.h"

namespace virtualbus {

class DigitalInput : public Card {
 public:
  static constexpr size_t kLineCount = 16;

  DigitalInput();
  void PowerUp() override;
  Bytes Poll() override;
  std::span<uint8_t> Inputs() override;
  bool Press(uint8_t line) override;
  bool Release(std::optional<uint8_t> line) override;  // without a line: all of them

  bool IsPressed(size_t line) const { return (lines_[line / 8] >> (line % 8) & 1) != 0; }

 private:
  std::array<uint8_t, 2> lines_{};
};

}  // namespace virtualbus
