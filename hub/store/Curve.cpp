#include "store/Curve.h"

#include <algorithm>

#include "store/Milliseconds.h"

namespace hub::store {

namespace {

constexpr int64_t kSteps[] = {
    10,           20,           50,          100,          200,          500,
    kSecond,      2 * kSecond,  5 * kSecond, 10 * kSecond, 15 * kSecond, 30 * kSecond,
    kMinute,      2 * kMinute,  3 * kMinute, 5 * kMinute,  10 * kMinute, 15 * kMinute,
    20 * kMinute, 30 * kMinute, kHour,       2 * kHour,    3 * kHour,    4 * kHour,
    6 * kHour,    12 * kHour,   kDay,        2 * kDay,     4 * kDay,     7 * kDay,
};

bool Fits(const Span& span, int64_t step) {
  return static_cast<uint64_t>(span.to / step - span.from / step) < span.points;
}

}  // namespace

int64_t StepFor(const Span& span, int64_t finest) {
  for (const int64_t step : kSteps)
    if (step >= finest && Fits(span, step)) return step;
  int64_t step = *std::rbegin(kSteps);
  while (!Fits(span, step)) step *= 2;
  return step;
}

Curve::Curve(const Span& span, int64_t step)
    : step_(step), begin_(span.from / step * step), end_(span.to / step * step + step) {}

void Curve::Add(int64_t time, const Summary& values) {
  if (time >= begin_ && time < end_) steps_[time / step_ * step_].Add(values);
}

History Curve::Finish() const {
  History history{step_, {}};
  history.points.reserve(steps_.size());
  for (const auto& [begin, values] : steps_)
    history.points.push_back({ToTime(begin), values.Mean(), values.min, values.max});
  return history;
}

History ToHistory(std::vector<Sample> samples) {
  std::ranges::stable_sort(samples, {}, &Sample::time);
  History history;
  history.points.reserve(samples.size());
  for (const auto& [time, value] : samples)
    history.points.push_back({ToTime(time), value, value, value});
  return history;
}

}  // namespace hub::store
