// 16 output lines in two blocks. A line drives its lamp by pulling low: a 0 bit is a lit lamp.
#pragma once

#include <array>

#include "cards/Card.h"

namespace virtualbus {

class DigitalOutput : public Card {
 public:
  DigitalOutput();
  void PowerUp() override;
  bool Write(std::span<const uint8_t> data) override;

  bool IsLit(size_t line) const { return (lines_[line / 8] >> (line % 8) & 1) == 0; }

 private:
  std::array<uint8_t, 2> lines_{};
};

}  // namespace virtualbus
