#include "cards/AnalogueInput.h"

namespace virtualbus {

namespace {

constexpr uint8_t kMask = 0x01;
constexpr uint8_t kStoreMask = 0x02;

}  // namespace

AnalogueInput::AnalogueInput() {
  AddField(Group::kStart, "Values", values_);
  AddField(Group::kStart, "Mask", mask_);
  AddField(Group::kStored, "Mask", stored_mask_);

  AddWritable(kMask, mask_);
  AddReadable(kMask, mask_);
  AddAction(kStoreMask, [this] { stored_mask_ = mask_; });
}

void AnalogueInput::PowerUp() { mask_ = stored_mask_; }

Bytes AnalogueInput::Poll() {
  Bytes seen(values_.begin(), values_.end());
  for (size_t channel = 0; channel < kChannelCount; ++channel) {
    if (IsMasked(channel)) seen[channel] = 0;
  }
  return seen;
}

std::span<uint8_t> AnalogueInput::Inputs() { return values_; }

}  // namespace virtualbus
