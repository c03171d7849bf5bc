#include "mqtt/Departures.h"

namespace hub::mqtt {

namespace {

bool IsInOrder(const model::Bus& bus) {
  return bus.DaemonNow().state == model::DaemonState::kUp &&
         bus.AdapterNow().state != model::AdapterState::kDown;
}

// One of a kind that nobody knows is not the one that was there before.
bool IsMissing(const model::Card* card) {
  return card == nullptr || card->state == model::CardState::kAbsent ||
         card->kind == model::Kind::kUnknown;
}

}  // namespace

void Departures::Look(const model::Bus& bus, model::SteadyTime now) {
  const bool is_in_order = IsInOrder(bus);
  for (unsigned address = 0; address < missing_since_.size(); ++address) {
    auto& since = missing_since_[address];
    const bool is_missing = IsMissing(bus.At(address));
    if (!is_missing) gone_[address] = false;
    if (!is_missing || !is_in_order)
      since.reset();
    else if (!since)
      since = now;
    else if (now - *since >= kPatience)
      gone_[address] = true;
  }
}

std::optional<model::SteadyTime> Departures::Due() const {
  std::optional<model::SteadyTime> due;
  for (unsigned address = 0; address < missing_since_.size(); ++address) {
    const auto& since = missing_since_[address];
    if (!since || gone_[address]) continue;
    if (!due || *since + kPatience < *due) due = *since + kPatience;
  }
  return due;
}

}  // namespace hub::mqtt
