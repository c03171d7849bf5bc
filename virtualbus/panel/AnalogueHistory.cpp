#include "panel/AnalogueHistory.h"

#include <algorithm>

namespace virtualbus {

void AnalogueHistory::Sample(const AnalogueInput& card) {
  for (size_t channel = 0; channel < samples_.size(); ++channel) {
    samples_[channel].push_back(card.Value(channel));
    if (samples_[channel].size() > kSeconds) samples_[channel].pop_front();
  }
}

std::vector<std::optional<uint8_t>> AnalogueHistory::Peaks(size_t channel, size_t stretches) const {
  std::vector<std::optional<uint8_t>> peaks(stretches);
  const auto& samples = samples_[channel];
  const size_t missing = kSeconds - samples.size();
  for (size_t i = 0; i < samples.size(); ++i) {
    auto& peak = peaks[(missing + i) * stretches / kSeconds];
    peak = std::max(peak.value_or(0), samples[i]);
  }
  return peaks;
}

}  // namespace virtualbus
