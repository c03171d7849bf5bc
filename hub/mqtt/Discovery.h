// The bus and its cards as Home Assistant's devices: what each kind of card is there, with the
// topics where its values and commands are. Pure: the model and its settings in, devices out.
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "model/Bus.h"
#include "mqtt/Announcement.h"
#include "mqtt/Topics.h"

namespace hub::mqtt {

struct Board {
  const model::Bus& bus;
  const Topics& topics;
  std::string_view version;  // of the hub
};

// The hub and the adapter; the cards' devices name it as what they hang on.
Device BusDevice(const Board& board);

// Nothing where no card is or was, or it has never said what it is.
std::optional<Device> CardDevice(const Board& board, unsigned address);

}  // namespace hub::mqtt
