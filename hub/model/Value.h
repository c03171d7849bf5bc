// The value of a channel as clients see it, and the bits and bytes that stand for it on the bus.
// Pure functions.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <variant>

#include "model/Kinds.h"
#include "model/Settings.h"

namespace hub::model {

// Nothing, a line, a number, the hexadecimal text of a code.
using Value = std::variant<std::monostate, bool, double, std::string>;

// What one channel is: enough to read its value and to write it.
struct ChannelForm {
  const KindRow& kind;
  unsigned number;
  const ChannelSettings& settings;
  bool is_signed = false;  // a drive of a motor card that is set up so
};

struct Range {
  double min;
  double max;
};

// The numbers that the channel takes; nothing for lines and codes.
std::optional<Range> RangeOf(const ChannelForm& form);

// `raw` is the line's bit, or the byte.
Value ToValue(const ChannelForm& form, uint8_t raw);

// The nearest that the bus has; nothing for a value of another type or out of range.
std::optional<uint8_t> ToRaw(const ChannelForm& form, const Value& value);

}  // namespace hub::model
