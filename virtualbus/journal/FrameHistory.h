// The host's last frames, numbered, so that a script can wait for one that may already have come.
#pragma once

#include <cstdint>
#include <deque>
#include <optional>
#include <vector>

#include "base/Text.h"

namespace virtualbus {

using FramePattern = std::vector<std::optional<uint8_t>>;  // nothing: any byte

class FrameHistory {
 public:
  void Add(const Bytes& frame);
  uint64_t End() const { return first_ + frames_.size(); }  // number of the next frame

  // Number of the first frame, from that number on, that begins with the pattern.
  std::optional<uint64_t> Find(uint64_t from, const FramePattern& pattern) const;

 private:
  uint64_t first_ = 0;
  std::deque<Bytes> frames_;
};

}  // namespace virtualbus
