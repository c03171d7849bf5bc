#include "cards/Motor.h"

#include <algorithm>
#include <cstdlib>

namespace virtualbus {

namespace {

constexpr int kStandstill = 0x80;

constexpr uint8_t kWriteSilentRange = 0xC0;
constexpr uint8_t kReadSilentRange = 0x01;
constexpr uint8_t kStoreSilentRanges = 0xCD;

}  // namespace

Motor::Motor() {
  AddField(Group::kStart, "Drive", drive_);
  AddField(Group::kStart, "SilentRanges", silent_);
  AddField(Group::kStored, "SilentRanges", stored_);

  AddWritable(kWriteSilentRange, silent_);
  AddReadable(kReadSilentRange, silent_);
  AddAction(kStoreSilentRanges, [this] { stored_ = silent_; });
}

void Motor::PowerUp() {
  drive_.fill(0);
  silent_ = stored_;
}

bool Motor::Write(std::span<const uint8_t> data) {
  if (data.size() != drive_.size()) return false;
  std::ranges::copy(data, drive_.begin());
  return true;
}

int Motor::Speed(size_t channel) const {
  if (silent_[channel] == 0) {
    const bool backward = (drive_[kChannelCount] >> channel & 1) != 0;
    return backward ? -drive_[channel] : drive_[channel];
  }
  const int offset = drive_[channel] - kStandstill;
  if (std::abs(offset) <= silent_[channel]) return 0;
  return std::clamp(offset * 2, -kFullSpeed, kFullSpeed);
}

std::vector<std::string> Motor::Show() const {
  std::vector<std::string> lines = Card::Show();
  std::string speeds = "speed";
  for (size_t channel = 0; channel < kChannelCount; ++channel) {
    speeds.append(" ").append(std::to_string(Speed(channel)));
  }
  lines.push_back(speeds);
  return lines;
}

}  // namespace virtualbus
