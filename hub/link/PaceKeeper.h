// How often a card may be sent something: the daemon's pause, as it was set or as receipts let
// guess, and what else is on the line in a round. Pure; time comes in as an argument.
#pragma once

#include <chrono>
#include <cstddef>
#include <optional>

namespace hub::link {

class PaceKeeper {
 public:
  using Microseconds = std::chrono::microseconds;

  // From SPEED= or the daemon's configuration; nothing: not known (any more).
  void SetPause(std::optional<Microseconds> pause) { known_ = pause; }
  void SetPolledCards(size_t cards) { polled_cards_ = cards; }

  // A command alone on its way took so long.
  void TakeReceipt(Microseconds time);

  Microseconds Round(size_t cards_with_commands) const;

 private:
  std::optional<Microseconds> known_;
  std::optional<Microseconds> guessed_;
  size_t polled_cards_ = 0;
};

}  // namespace hub::link
