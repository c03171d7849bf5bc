#include "http/Ledger.h"

#include <algorithm>

namespace hub::http {

void Ledger::Note(const model::Change& change) {
  last_ = {change.after, change.sequence};
  if (change.bus) bus_ = change.sequence;
  if (change.page) page_ = change.sequence;
  for (const unsigned address : change.cards) places_.at(address).card = change.sequence;
  for (const model::ChannelId& id : change.channels)
    places_.at(id.address).channels.at(id.number) = change.sequence;
  for (const model::BoardPlace& place : change.boards) {
    uint64_t& sequence = boards_[place];
    boards_by_sequence_.erase({sequence, place});
    sequence = change.sequence;
    boards_by_sequence_.emplace(sequence, place);
  }
}

model::Change Ledger::After(uint64_t sequence) const {
  model::Change change{sequence, last_.sequence, bus_ > sequence, page_ > sequence, {}, {}, {}, {}};
  for (unsigned address = 0; address < places_.size(); ++address) {
    const Place& place = places_[address];
    if (place.card > sequence) {
      change.cards.push_back(address);
      continue;
    }
    for (unsigned number = 0; number < kMostChannels; ++number)
      if (place.channels[number] > sequence) change.channels.push_back({address, number});
  }
  const auto first = boards_by_sequence_.lower_bound({sequence + 1, {0, -1, -1}});
  for (auto moved = first; moved != boards_by_sequence_.end(); ++moved)
    change.boards.push_back(moved->second);
  std::ranges::sort(change.boards);
  return change;
}

}  // namespace hub::http
