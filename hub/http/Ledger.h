// When each part of the bus changed last, so that a reader who comes for news needs to keep one
// number only: the sequence that it was told up to. However far it fell behind, what it has to
// hear is the levels that have moved since, each once. Pure; one thread.
#pragma once

#include <array>
#include <cstdint>
#include <map>
#include <set>
#include <utility>

#include "model/Change.h"
#include "protocol/ConsoleReplies.h"

namespace hub::http {

class Ledger {
 public:
  void Note(const model::Change& change);

  uint64_t Sequence() const { return last_.sequence; }  // of the last change

  // True for a reader who has heard all but the last change.
  bool IsNext(uint64_t sequence) const { return sequence >= last_.after; }

  // All that has moved behind that number, as one change; its events are left to their ring. The
  // channels of a card that has changed as a whole come with the card.
  model::Change After(uint64_t sequence) const;

 private:
  static constexpr size_t kMostChannels = 16;

  struct Place {
    uint64_t card = 0;
    std::array<uint64_t, kMostChannels> channels{};
  };

  struct {
    uint64_t after = 0;
    uint64_t sequence = 0;
  } last_;
  uint64_t bus_ = 0;
  uint64_t page_ = 0;
  std::array<Place, protocol::kCardCount> places_{};
  // Of the other boards there may be tens of thousands: what has moved is found by its number.
  std::map<model::BoardPlace, uint64_t> boards_;
  std::set<std::pair<uint64_t, model::BoardPlace>> boards_by_sequence_;
};

}  // namespace hub::http
