#include "protocol/ConsoleReplies.h"

#include <algorithm>
#include <charconv>

#include "protocol/Hex.h"
#include "protocol/Pace.h"

namespace hub::protocol {

namespace {

// A record of one card: "DTI:0xA:EMPTY" has the mark "DTI", the address A and the text "EMPTY".
struct Record {
  uint8_t address;
  std::string_view text;
};

std::optional<Record> ParseRecord(std::string_view line, std::string_view mark) {
  constexpr size_t kAddressAt = 6;
  constexpr size_t kTextAt = 8;
  if (!line.starts_with(mark) || line.substr(mark.size(), 3) != ":0x") return std::nullopt;
  if (line.size() < kTextAt || line[kAddressAt + 1] != ':') return std::nullopt;
  const auto address = ParseHexDigit(line[kAddressAt]);
  if (!address) return std::nullopt;
  return Record{*address, line.substr(kTextAt)};
}

std::optional<std::string> Behind(std::string_view mark, const Lines& answer) {
  const auto line = std::ranges::find_if(
      answer, [mark](const std::string& each) { return each.starts_with(mark); });
  if (line == answer.end()) return std::nullopt;
  return line->substr(mark.size());
}

}  // namespace

std::optional<std::string> ParseVersion(const Lines& answer) {
  return Behind("CIA: DRIVER VERSION ", answer);
}

std::optional<CardNames> ParseCardTable(const Lines& answer) {
  CardNames names;
  size_t count = 0;
  for (const std::string& line : answer) {
    const auto record = ParseRecord(line, "DTI");
    if (!record) continue;
    names[record->address] = record->text;
    ++count;
  }
  if (count != kCardCount) return std::nullopt;
  return names;
}

std::optional<Polling> ParsePolling(const Lines& answer) {
  Polling polling;
  const auto state = Behind("CIA: GLOBAL POLLING IS ", answer);
  if (!state) return std::nullopt;
  polling.all = *state == "ENABLED";
  for (const std::string& line : answer)
    if (const auto record = ParseRecord(line, "PTI"))
      polling.cards[record->address] = record->text == "ON";
  return polling;
}

std::optional<int> ParsePace(const Lines& answer) {
  const auto text = Behind("CIA: SPEED IS SET to ", answer);
  int percent = 0;
  if (!text ||
      std::from_chars(text->data(), text->data() + text->size(), percent).ec != std::errc())
    return std::nullopt;
  if (percent < kSlowestPace || percent > kFastestPace) return std::nullopt;
  return percent;
}

std::vector<uint8_t> ParseReboots(const Lines& answer) {
  std::vector<uint8_t> addresses;
  for (const std::string& line : answer)
    if (const auto record = ParseRecord(line, "RBT"); record && record->text == "OK")
      addresses.push_back(record->address);
  return addresses;
}

bool SaysPolling(const Lines& answer) {
  return Behind("CIA: GLOBAL POLLING IS ", answer) || Behind("CIA: POLLON is OK", answer) ||
         Behind("CIA: POLLOFF is OK", answer);
}

bool SaysForcedDiscovery(const Lines& answer) {
  return Behind("FORCED DISCOVER LIST:", answer).has_value();
}

std::optional<std::string> ParseError(const Lines& answer) { return Behind("CIE: ", answer); }

std::optional<uint8_t> ParseCardValue(const Lines& answer) {
  constexpr std::string_view kMark = "0x";
  if (answer.empty()) return std::nullopt;
  const size_t at = answer.back().rfind(kMark);
  if (at == std::string::npos) return std::nullopt;
  return ParseHexByte(std::string_view(answer.back()).substr(at + kMark.size()));
}

}  // namespace hub::protocol
