// What the answers of the console mean. Pure functions: lines of an answer in, values out; nothing
// where the answer is not of the form.
#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "protocol/Console.h"

namespace hub::protocol {

inline constexpr size_t kCardCount = 16;

// "CIA: DRIVER VERSION 1.20" gives "1.20".
std::optional<std::string> ParseVersion(const Lines& answer);

// The names of the cards by address, as DISCOVER and FORCEDISCOVER list them.
using CardNames = std::array<std::string, kCardCount>;
std::optional<CardNames> ParseCardTable(const Lines& answer);

struct Polling {
  bool all = false;                                     // input cards are polled at all
  std::array<std::optional<bool>, kCardCount> cards{};  // nothing: no input card is there
};
std::optional<Polling> ParsePolling(const Lines& answer);

// What a line that somebody typed has changed; the answer says it wherever the command stood.
std::optional<int> ParsePace(const Lines& answer);       // "CIA: SPEED IS SET to 50%" gives 50
std::vector<uint8_t> ParseReboots(const Lines& answer);  // addresses: "RBT:0x5:OK" gives 5
bool SaysPolling(const Lines& answer);                   // of all cards or of one
bool SaysForcedDiscovery(const Lines& answer);

// Why a command was refused or went wrong: the first "CIE:" line without its mark.
std::optional<std::string> ParseError(const Lines& answer);

// The value that a card gave: the two digits behind the last "0x" of the last line.
std::optional<uint8_t> ParseCardValue(const Lines& answer);

}  // namespace hub::protocol
