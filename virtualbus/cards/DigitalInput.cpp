#include "cards/DigitalInput.h"

namespace virtualbus {

DigitalInput::DigitalInput() { AddField(Group::kStart, "Lines", lines_); }

void DigitalInput::PowerUp() {}

Bytes DigitalInput::Poll() { return {lines_.begin(), lines_.end()}; }

std::span<uint8_t> DigitalInput::Inputs() { return lines_; }

bool DigitalInput::Press(uint8_t line) {
  if (line >= kLineCount) return false;
  lines_[line / 8] = static_cast<uint8_t>(lines_[line / 8] | 1 << line % 8);
  return true;
}

bool DigitalInput::Release(std::optional<uint8_t> line) {
  if (!line) {
    lines_.fill(0);
    return true;
  }
  if (*line >= kLineCount) return false;
  lines_[*line / 8] = static_cast<uint8_t>(lines_[*line / 8] & ~(1 << *line % 8));
  return true;
}

}  // namespace virtualbus
