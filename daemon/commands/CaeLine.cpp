#include "commands/CaeLine.h"

#include "runtime/Values.h"

namespace {

// The one character `offset` places from the first ":".
std::string BesideColon(std::string_view line, int offset) {
  const std::size_t colon = line.find(':');
  if (colon == std::string_view::npos) return "";
  const auto at = static_cast<long>(colon) + offset;
  if (at < 0 || at >= static_cast<long>(line.size())) return "";
  return {line[static_cast<std::size_t>(at)]};
}

std::string_view BehindEquals(std::string_view line) {
  const std::size_t equals = line.find('=');
  return equals == std::string_view::npos ? "" : line.substr(equals + 1);
}

}  // namespace

std::string AddressText(std::string_view line) { return BesideColon(line, 1); }

std::string ChannelText(std::string_view line) { return BesideColon(line, -1); }

std::string BankText(std::string_view line) { return BesideColon(line, -2); }

std::string ValueText(std::string_view line, std::size_t count) {
  return std::string(BehindEquals(line).substr(0, count));
}

std::string SpeedText(std::string_view line, std::string_view separator) {
  const std::string_view rest = BehindEquals(line);
  return std::string(rest.substr(0, rest.find_first_of(separator)));
}

unsigned char Digit(std::string_view text) { return text.empty() ? 0 : HexCharToByte(text[0]); }

unsigned char TwoDigits(std::string_view text) {
  return HexNum2Byte(text.empty() ? '0' : text[0], text.size() < 2 ? '0' : text[1]);
}
