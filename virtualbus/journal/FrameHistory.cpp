#include "journal/FrameHistory.h"

#include <algorithm>

namespace virtualbus {

namespace {

constexpr size_t kKept = 16384;  // some seconds of a busy bus

bool Begins(const Bytes& frame, const FramePattern& pattern) {
  if (frame.size() < pattern.size()) return false;
  return std::equal(pattern.begin(), pattern.end(), frame.begin(),
                    [](const auto& wanted, uint8_t byte) { return !wanted || *wanted == byte; });
}

}  // namespace

void FrameHistory::Add(const Bytes& frame) {
  frames_.push_back(frame);
  if (frames_.size() <= kKept) return;
  frames_.pop_front();
  ++first_;
}

std::optional<uint64_t> FrameHistory::Find(uint64_t from, const FramePattern& pattern) const {
  for (uint64_t number = std::max(from, first_); number < End(); ++number) {
    if (Begins(frames_[static_cast<size_t>(number - first_)], pattern)) return number;
  }
  return std::nullopt;
}

}  // namespace virtualbus
