#include "model/Change.h"

#include <algorithm>

namespace hub::model {

void EventRing::Add(const Event& event) {
  events_.push_back(event);
  if (events_.size() <= kMost) return;
  gone_.push_back(events_.front().sequence);
  events_.pop_front();
  if (gone_.size() > kMostCounted) gone_.pop_front();
}

EventRing::Since EventRing::After(uint64_t sequence) const {
  const auto first = std::ranges::upper_bound(events_, sequence, {}, &Event::sequence);
  const auto first_gone = std::ranges::upper_bound(gone_, sequence);
  return {{first, events_.end()}, static_cast<uint64_t>(gone_.end() - first_gone)};
}

}  // namespace hub::model
