// Hexadecimal as the daemon writes it: upper case, no prefix. Pure functions.
#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace hub::protocol {

using Bytes = std::vector<uint8_t>;

char HexDigit(unsigned value);                         // 0..15
std::string HexByte(uint8_t value);                    // "0F"
std::string HexBytes(std::span<const uint8_t> bytes);  // "434F"

// Strict: what is no upper-case hexadecimal of that length gives nothing.
std::optional<uint8_t> ParseHexDigit(char digit);
std::optional<uint8_t> ParseHexByte(std::string_view two_digits);
std::optional<Bytes> ParseHexBytes(std::string_view digits);

}  // namespace hub::protocol
