#include "cards/DigitalOutput.h"

#include <algorithm>

namespace virtualbus {

DigitalOutput::DigitalOutput() { AddField(Group::kStart, "Lines", lines_); }

void DigitalOutput::PowerUp() { lines_.fill(0xFF); }

bool DigitalOutput::Write(std::span<const uint8_t> data) {
  if (data.size() != lines_.size()) return false;
  std::ranges::copy(data, lines_.begin());
  return true;
}

}  // namespace virtualbus
