// What a virtual bus shows of itself, taken apart. Pure functions; an answer of another form gives
// nothing.
#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <vector>

namespace hub::virtualbus {

struct Status {
  std::string device;  // empty while the cable is pulled
  bool cable = false;  // it is plugged
  int64_t frames = 0;
  int64_t replies = 0;
  int64_t lost = 0;
  int64_t shaped = 0;
  std::vector<std::string> faults;  // as the lines that switch them on: "late 40ms"
  bool operator==(const Status&) const = default;
};

struct ShownCard {
  std::string kind;  // "digital-input"
  bool is_plugged = true;
  // Of an input card: what the world outside does to it, a byte a block.
  std::optional<std::vector<uint8_t>> values;
  bool operator==(const ShownCard&) const = default;
};

std::optional<Status> ParseStatus(std::span<const std::string> lines);
std::optional<ShownCard> ParseCard(std::span<const std::string> lines);

}  // namespace hub::virtualbus
