// A curve in the making: which step gives no more points than were asked for, and the values in
// each. Pure.
#pragma once

#include <cstddef>
#include <cstdint>
#include <map>

#include "store/History.h"
#include "store/Packing.h"

namespace hub::store {

inline constexpr int64_t kSecond = 1000;  // all times are ms since 1970
inline constexpr int64_t kMinute = 60 * kSecond;
inline constexpr int64_t kHour = 60 * kMinute;
inline constexpr int64_t kDay = 24 * kHour;

// A channel as a number below kMostChannels.
inline constexpr uint32_t kMostChannels = 4096;
inline uint32_t NumberOf(model::ChannelId channel) { return channel.address << 8 | channel.number; }

struct Span {
  uint32_t channel = 0;
  int64_t from = 0;  // both ends belong to it; 0 <= from <= to
  int64_t to = 0;
  size_t points = 0;  // at most; not 0
};

// The shortest step from the table, and no shorter than `finest`, with which the span has no more
// than its points. Steps begin at multiples of themselves, days in UTC.
int64_t StepFor(const Span& span, int64_t finest);

class Curve {
 public:
  Curve(const Span& span, int64_t step);

  // What the values are searched in: the span up to the ends of its first and last step.
  int64_t Begin() const { return begin_; }
  int64_t End() const { return end_; }  // not in it any more

  void Add(int64_t time, const Summary& values);
  History Finish() const;

 private:
  int64_t step_;
  int64_t begin_;
  int64_t end_;
  std::map<int64_t, Summary> steps_;  // by their beginning
};

// Values as they came, put in order of time: a clock may have jumped.
History ToHistory(std::vector<Sample> samples);

}  // namespace hub::store
