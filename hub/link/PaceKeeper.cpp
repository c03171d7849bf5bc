#include "link/PaceKeeper.h"

#include <algorithm>

#include "protocol/Pace.h"

namespace hub::link {

namespace {

using Microseconds = PaceKeeper::Microseconds;

constexpr int kSlowest = 1;  // percent

// One that took longer than this waited for a card.
constexpr Microseconds kLongestReceipt{100'000};
constexpr int kSmoothing = 8;

// A receipt passes three of the daemon's threads, on average in the middle of the pause of each,
// and takes 0.3 ms where nothing else runs. On a machine that is busy with other things each change
// from one program to the next takes longer: the four of a receipt, and in a round one and two more
// for each exchange. One change made a little longer by chance is not busy: it would count for all.
constexpr Microseconds kHandling{500};
constexpr int kChangesOfReceipt = 4;

Microseconds DelayOfChange(Microseconds pause, Microseconds receipt) {
  const Microseconds usual = pause * 3 / 2 + kHandling;
  return std::max(receipt - usual, Microseconds(0)) / kChangesOfReceipt;
}

}  // namespace

void PaceKeeper::TakeReceipt(Microseconds time) {
  if (time > kLongestReceipt) return;
  const Microseconds before = guessed_.value_or(known_ ? time : protocol::RoundPause(kSlowest));
  guessed_ = before + (time - before) / kSmoothing;
}

Microseconds PaceKeeper::Round(size_t cards_with_commands) const {
  const Microseconds slowest = protocol::RoundPause(kSlowest);
  const Microseconds guess = guessed_.value_or(slowest);
  const Microseconds pause = known_.value_or(std::min(guess, slowest));
  const size_t frames = polled_cards_ + cards_with_commands;
  const Microseconds delay = known_ && guessed_ ? DelayOfChange(pause, guess) : Microseconds(0);
  return protocol::RoundTime(pause, frames) + delay * static_cast<long>(1 + 2 * frames);
}

}  // namespace hub::link
