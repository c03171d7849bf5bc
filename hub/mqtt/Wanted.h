// All that Home Assistant shall have of this bus. Pure.
#pragma once

#include <vector>

#include "mqtt/Announcement.h"
#include "mqtt/Departures.h"
#include "mqtt/Discovery.h"

namespace hub::mqtt {

struct Wanted {
  std::vector<Announcement> announcements;  // the bus's own first, then by address
  Departures::Cards open;  // nobody knows yet what they are: what the broker has of them stays
};

Wanted WantedOf(const Board& board, Discovery discovery, const Departures::Cards& gone);

}  // namespace hub::mqtt
