#include "cards/Servo.h"

#include <algorithm>

namespace virtualbus {

namespace {

constexpr uint8_t kMiddle = 0x80;

constexpr uint8_t kWriteEndA = 0xC0;
constexpr uint8_t kWriteEndB = 0xD0;
constexpr uint8_t kReadEndA = 0x21;
constexpr uint8_t kReadEndB = 0x27;
constexpr uint8_t kStorePositions = 0x74;
constexpr uint8_t kMoveToStored = 0x3F;

}  // namespace

Servo::Servo() {
  end_a_.fill(0x00);
  end_b_.fill(0xFF);
  stored_.fill(kMiddle);

  AddField(Group::kStart, "Positions", positions_);
  AddField(Group::kStored, "EndA", end_a_);
  AddField(Group::kStored, "EndB", end_b_);
  AddField(Group::kStored, "Positions", stored_);

  AddWritable(kWriteEndA, end_a_);
  AddWritable(kWriteEndB, end_b_);
  AddReadable(kReadEndA, end_a_);
  AddReadable(kReadEndB, end_b_);
  AddAction(kStorePositions, [this] { stored_ = positions_; });
  AddAction(kMoveToStored, [this] { positions_ = stored_; });
}

void Servo::PowerUp() { positions_.fill(kMiddle); }

bool Servo::Write(std::span<const uint8_t> data) {
  if (data.size() != positions_.size()) return false;
  std::ranges::copy(data, positions_.begin());
  return true;
}

uint8_t Servo::Reached(size_t channel) const {
  const auto [low, high] = std::minmax(end_a_[channel], end_b_[channel]);
  return std::clamp(positions_[channel], low, high);
}

std::vector<std::string> Servo::Show() const {
  std::vector<std::string> lines = Card::Show();
  Bytes reached;
  for (size_t channel = 0; channel < kChannelCount; ++channel) reached.push_back(Reached(channel));
  lines.push_back("reached " + Hex(reached));
  return lines;
}

}  // namespace virtualbus
