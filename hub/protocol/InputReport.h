// What the daemon writes on its IO port: one block of an input card as it is now. Pure functions.
#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

namespace hub::protocol {

struct InputReport {
  uint8_t address = 0;  // 0..15
  uint8_t block = 0;    // 0..15
  uint8_t value = 0;
  bool operator==(const InputReport&) const = default;
};

// "a3b0d40", and nothing else.
std::optional<InputReport> ParseInputReport(std::string_view line);

}  // namespace hub::protocol
