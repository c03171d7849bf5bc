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

// A receipt passes three of the daemon's threads, on average in the middle of the pause of each.
// On a machine that is busy with other things it takes longer, and so does a round.
constexpr Microseconds kHandling{200};
constexpr double kMostStretch = 10;

double Stretch(Microseconds pause, Microseconds receipt) {
  const Microseconds usual = protocol::RoundTime(pause, 1) * 3 / 2 + kHandling;
  return std::clamp(static_cast<double>(receipt.count()) / static_cast<double>(usual.count()), 1.0,
                    kMostStretch);
}

// A bus that is a little slower than the hub thinks would gather commands in the daemon for ever.
Microseconds WithMargin(Microseconds round) { return round + round / 5; }

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
  const double stretch = known_ && guessed_ ? Stretch(pause, guess) : 1;
  const Microseconds round = protocol::RoundTime(pause, polled_cards_ + cards_with_commands);
  return WithMargin(Microseconds(static_cast<long>(static_cast<double>(round.count()) * stretch)));
}

}  // namespace hub::link
