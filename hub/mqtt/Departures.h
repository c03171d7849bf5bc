// Which cards are gone for good. One that is silent is not, nor is one that is missing while the
// bus itself is not in order: it may come back. Home Assistant forgets what was taken back, so it
// is not done in haste. Pure; one thread.
#pragma once

#include <array>
#include <bitset>
#include <optional>

#include "model/Bus.h"
#include "model/Clock.h"

namespace hub::mqtt {

class Departures {
 public:
  // Two listings of the cards at least.
  static constexpr std::chrono::seconds kPatience{60};

  using Cards = std::bitset<protocol::kCardCount>;

  // How the bus is at this time. Called when it has changed, and when the next one is due.
  void Look(const model::Bus& bus, model::SteadyTime now);

  const Cards& Gone() const { return gone_; }
  std::optional<model::SteadyTime> Due() const;  // nothing: until the bus changes

 private:
  std::array<std::optional<model::SteadyTime>, protocol::kCardCount> missing_since_;
  Cards gone_;
};

}  // namespace hub::mqtt
