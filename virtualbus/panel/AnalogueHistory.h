// The last minute of a card's analogue channels, a sample a second.
#pragma once

#include <array>
#include <deque>
#include <optional>
#include <vector>

#include "cards/AnalogueInput.h"

namespace virtualbus {

class AnalogueHistory {
 public:
  static constexpr size_t kSeconds = 60;

  void Sample(const AnalogueInput& card);

  // The highest value of each equal stretch of the minute, the newest last; nothing where there was
  // no sample yet.
  std::vector<std::optional<uint8_t>> Peaks(size_t channel, size_t stretches) const;

 private:
  std::array<std::deque<uint8_t>, AnalogueInput::kChannelCount> samples_;
};

}  // namespace virtualbus
