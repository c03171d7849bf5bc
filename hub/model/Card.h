// One card of the bus and its channels.
#pragma once

#include <cstdint>
#include <optional>
#include <vector>

#include "model/Change.h"
#include "model/Glass.h"
#include "model/Kinds.h"
#include "model/Value.h"

namespace hub::model {

struct Channel {
  Value value;                // nothing until it is known
  uint8_t raw = 0;            // the line's bit or the byte, where the value is known
  bool assumed = false;       // an output: not sent yet in this session of the daemon
  bool pending = false;       // asked for, and not on the bus yet
  std::optional<Time> since;  // when the value last changed

  bool IsKnown() const { return value.index() != 0; }
};

enum class CardState {
  kPresent,
  kSilent,  // did not answer the last discovery
  kAbsent,  // was there once
};

struct Card {
  unsigned address = 0;
  Kind kind = Kind::kUnknown;
  CardState state = CardState::kPresent;
  std::optional<bool> polling;  // an input card, as far as it is known
  std::vector<Channel> channels;
  std::optional<Glass> glass;

  const KindRow& Row() const { return RowOf(kind); }
};

}  // namespace hub::model
