#include "mqtt/Wanted.h"

#include <algorithm>
#include <iterator>

namespace hub::mqtt {

Wanted WantedOf(const Board& board, Discovery discovery, const Departures::Cards& gone) {
  Wanted wanted;
  if (discovery == Discovery::kOff) return wanted;
  const auto add = [&](const Device& device) {
    auto announced = Announce(device, board.bus.Id(), discovery);
    std::ranges::move(announced, std::back_inserter(wanted.announcements));
  };
  add(BusDevice(board));
  for (unsigned address = 0; address < protocol::kCardCount; ++address) {
    if (gone[address]) continue;
    if (const auto device = CardDevice(board, address))
      add(*device);
    else
      wanted.open[address] = true;
  }
  return wanted;
}

}  // namespace hub::mqtt
