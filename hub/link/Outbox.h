// The commands on their way to the daemon, never faster than the bus takes them.
//
// The daemon queues without a limit and sends one frame a card a round, so the waiting is done
// here: one command a card a round goes out, and never are more than 255 bytes under way. What
// the daemon has acted on it repeats on MON; that echo is the receipt.
//
//   Offer ──> waiting (by card) ──TakeDue──> under way ──TakeEcho──> received
//
// Up to 64 commands a card wait as they came. Behind them blocks are merged, the last value of
// each counts, and a text or a code is refused. A card that had more than it takes goes on
// merging until nothing has waited for a round: else clients that go on flooding would fill the
// 64 places again and again, and each value would be as late as 64 rounds. Pure: time comes in as
// an argument.
#pragma once

#include <array>
#include <chrono>
#include <cstdint>
#include <deque>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "model/Clock.h"
#include "protocol/ConsoleReplies.h"
#include "protocol/IoCommand.h"

namespace hub::link {

using model::SteadyTime;

// Names a command to whoever offered it.
using Ticket = uint64_t;

class Outbox {
 public:
  static constexpr size_t kMostWaiting = 64;  // a card

  struct Entry {
    protocol::IoCommand command;
    std::vector<Ticket> tickets;  // more than one where commands were merged
  };

  // Whether so many texts or codes would be taken.
  bool HasPlace(unsigned address, size_t count) const;

  // Nothing where the card takes no more: too fast.
  std::optional<Ticket> Offer(const protocol::IoCommand& command, SteadyTime now);

  // The round of the bus, as the pace makes it.
  void SetRound(std::chrono::microseconds round) { round_ = round; }

  // The commands that may go now, with their ends, as one write; empty where none may.
  std::string TakeDue(SteadyTime now);

  // When TakeDue can have something again; nothing while only an echo can change that.
  std::optional<SteadyTime> NextDue() const;

  // A line of MON. Nothing where it is no command that is under way.
  std::optional<Entry> TakeEcho(std::string_view line);

  // The session is over, and the outbox empty.
  struct Abandoned {
    std::vector<Entry> written;  // perhaps done: only the echo is missing
    std::vector<Entry> never_written;
  };
  Abandoned Abandon();

  size_t CardsWaiting() const;  // that have something to be sent
  size_t BytesUnderWay() const { return bytes_under_way_; }
  uint64_t MergedCount() const { return merged_count_; }

 private:
  struct UnderWay {
    std::string line;
    Entry entry;
  };
  struct CardQueue {
    std::deque<Entry> waiting;  // in the order in which they came
    std::deque<Entry> levels;   // behind them, one a block; the one that waits longest first
    bool is_flooded = false;    // blocks are merged even where nothing waits before them
    SteadyTime free_at{};       // the card's next round
    size_t in_a_row = 0;        // commands, since nothing waited for a round
    bool IsEmpty() const { return waiting.empty() && levels.empty(); }
  };

  static std::deque<Entry>& NextIn(CardQueue& queue);
  static size_t SizeOfNext(const CardQueue& queue);
  std::chrono::microseconds RoundOf(const CardQueue& queue) const;
  SteadyTime BeginOfRound(const CardQueue& queue, SteadyTime now) const;
  Ticket Merge(CardQueue& queue, const protocol::WriteBlock& block);

  std::chrono::microseconds round_{5000};
  std::array<CardQueue, protocol::kCardCount> queues_;
  size_t first_card_ = 0;  // whose turn it is, so that no card waits for ever behind the others
  std::deque<UnderWay> under_way_;  // oldest first
  size_t bytes_under_way_ = 0;
  Ticket last_ticket_ = 0;
  uint64_t merged_count_ = 0;
};

}  // namespace hub::link
