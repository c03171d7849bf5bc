#include "base/Text.h"

#include <charconv>
#include <cstdio>
#include <sstream>

namespace virtualbus {

namespace {

constexpr long kLongestDuration = 24L * 60 * 60 * 1000;  // a day, in milliseconds

template <typename Number, typename... Base>
std::optional<Number> ParseWhole(std::string_view text, Base... base) {
  Number number{};
  const char* const end = text.data() + text.size();
  const auto [stop, error] = std::from_chars(text.data(), end, number, base...);
  if (error != std::errc{} || stop != end) return std::nullopt;
  return number;
}

bool TakeSuffix(std::string_view& text, std::string_view suffix) {
  if (!text.ends_with(suffix)) return false;
  text.remove_suffix(suffix.size());
  return true;
}

}  // namespace

std::string Hex(std::span<const uint8_t> bytes) {
  std::string text;
  char digits[4];
  for (const uint8_t byte : bytes) {
    std::snprintf(digits, sizeof digits, "%02X", byte);
    if (!text.empty()) text += ' ';
    text += digits;
  }
  return text;
}

std::string HexDigit(size_t address) { return std::string(1, "0123456789ABCDEF"[address & 0xF]); }

std::vector<std::string> SplitWords(std::string_view text) {
  std::istringstream stream{std::string(text)};
  std::vector<std::string> words;
  for (std::string word; stream >> word;) words.push_back(word);
  return words;
}

std::optional<uint8_t> ParseAddress(std::string_view text) {
  return text.size() == 1 ? ParseByte(text) : std::nullopt;
}

std::optional<uint8_t> ParseByte(std::string_view text) {
  return text.size() <= 2 ? ParseWhole<uint8_t>(text, 16) : std::nullopt;
}

std::optional<Bytes> ParseBytes(std::span<const std::string> words) {
  Bytes bytes;
  for (const std::string& word : words) {
    const auto byte = ParseByte(word);
    if (!byte) return std::nullopt;
    bytes.push_back(*byte);
  }
  return bytes;
}

std::optional<long> ParseNumber(std::string_view text, long least, long most) {
  if (text.starts_with('+')) text.remove_prefix(1);
  const auto number = ParseWhole<long>(text, 10);
  if (!number || *number < least || *number > most) return std::nullopt;
  return number;
}

std::optional<std::chrono::milliseconds> ParseDuration(std::string_view text) {
  const bool milliseconds = TakeSuffix(text, "ms");
  if (!milliseconds && !TakeSuffix(text, "s")) return std::nullopt;
  const auto number = ParseWhole<double>(text);
  const double scaled = number.value_or(-1.0) * (milliseconds ? 1.0 : 1000.0);
  if (!(scaled >= 0.0 && scaled <= static_cast<double>(kLongestDuration))) return std::nullopt;
  return std::chrono::milliseconds(static_cast<long>(scaled));
}

std::optional<double> ParseSeconds(std::string_view text) { return ParseWhole<double>(text); }

std::optional<double> ParseChance(std::string_view text) {
  if (!TakeSuffix(text, "%")) return std::nullopt;
  const auto percent = ParseWhole<double>(text);
  if (!percent || !(*percent >= 0.0 && *percent <= 100.0)) return std::nullopt;
  return *percent / 100.0;
}

}  // namespace virtualbus
