#include "protocol/Hex.h"

namespace hub::protocol {

namespace {

constexpr std::string_view kDigits = "0123456789ABCDEF";

}  // namespace

char HexDigit(unsigned value) { return kDigits[value & 0xF]; }

std::string HexByte(uint8_t value) { return {HexDigit(value >> 4U), HexDigit(value)}; }

std::string HexBytes(std::span<const uint8_t> bytes) {
  std::string digits;
  for (const uint8_t byte : bytes) digits += HexByte(byte);
  return digits;
}

std::optional<uint8_t> ParseHexDigit(char digit) {
  const size_t value = kDigits.find(digit);
  if (value == std::string_view::npos) return std::nullopt;
  return static_cast<uint8_t>(value);
}

std::optional<uint8_t> ParseHexByte(std::string_view two_digits) {
  if (two_digits.size() != 2) return std::nullopt;
  const auto high = ParseHexDigit(two_digits[0]);
  const auto low = ParseHexDigit(two_digits[1]);
  if (!high || !low) return std::nullopt;
  return static_cast<uint8_t>(*high * 16 + *low);
}

std::optional<Bytes> ParseHexBytes(std::string_view digits) {
  if (digits.size() % 2 != 0) return std::nullopt;
  Bytes bytes;
  for (size_t at = 0; at < digits.size(); at += 2) {
    const auto byte = ParseHexByte(digits.substr(at, 2));
    if (!byte) return std::nullopt;
    bytes.push_back(*byte);
  }
  return bytes;
}

}  // namespace hub::protocol
