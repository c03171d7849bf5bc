// Bytes and the small syntaxes that people type: hexadecimal bytes, addresses, durations, chances.
// Pure functions; a parser returns nothing if the text has another form.
#pragma once

#include <chrono>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace virtualbus {

using Bytes = std::vector<uint8_t>;

constexpr size_t kAddressCount = 16;

std::string Hex(std::span<const uint8_t> bytes);  // "10 05 FF"
std::string HexDigit(size_t address);             // "E"

std::vector<std::string> SplitWords(std::string_view text);

std::optional<uint8_t> ParseAddress(std::string_view text);  // one digit, "0" to "F"
std::optional<uint8_t> ParseByte(std::string_view text);     // one or two digits
std::optional<Bytes> ParseBytes(std::span<const std::string> words);
std::optional<long> ParseNumber(std::string_view text, long least, long most);
std::optional<std::chrono::milliseconds> ParseDuration(std::string_view text);  // "500ms", "2s"
std::optional<double> ParseSeconds(std::string_view text);                      // "0.001234"
std::optional<double> ParseChance(std::string_view text);  // "0.1%" gives 0.001

}  // namespace virtualbus
