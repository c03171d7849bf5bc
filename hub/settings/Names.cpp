#include "settings/Names.h"

#include <array>
#include <charconv>
#include <optional>

#include "protocol/Hex.h"
#include "protocol/IoCommand.h"

namespace hub::settings {

namespace {

constexpr unsigned kChannelsOfACard = 16;
constexpr int kMostDecimals = 6;
constexpr double kLargestNumber = 1e9;  // as the API has it
constexpr std::array<std::string_view, 2> kLevels{"low", "high"};

using ChannelKey = std::pair<unsigned, unsigned>;

std::optional<unsigned> ParseCard(std::string_view text) {
  if (text.size() != 1) return std::nullopt;
  return protocol::ParseHexDigit(text[0]);
}

std::optional<ChannelKey> ParseChannel(std::string_view text) {
  const auto card = ParseCard(text.substr(0, 1));
  if (!card || text.size() < 3 || text.size() > 4 || text[1] != '.') return std::nullopt;
  const std::string_view digits = text.substr(2);
  if (digits.size() > 1 && digits[0] == '0') return std::nullopt;
  unsigned number = 0;
  const auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), number);
  if (error != std::errc{} || end != digits.data() + digits.size() || number >= kChannelsOfACard)
    return std::nullopt;
  return ChannelKey{*card, number};
}

void TakeLabels(Section section, model::Settings& names) {
  section.Take("bus", names.bus_name, kLabel);
  for (const std::string_view key : section.Keys()) {
    if (key == "bus") continue;
    // Without quotes TOML takes the dot for a section's.
    if (section.HasSection(key))
      section.Complain(key, "is a section; a channel stands in quotes: \"5.0\" = \"Lamp\"");
    else if (const auto card = ParseCard(key))
      section.Take(key, names.cards[*card].name, kLabel);
    else if (const auto channel = ParseChannel(key))
      section.Take(key, names.channels[*channel].name, kLabel);
    else
      section.Complain(key, "is neither a card (\"0\" to \"F\") nor a channel (\"5.0\")");
  }
}

void TakeChannel(Section section, model::ChannelSettings& channel) {
  section.Take("unit", channel.unit, kUnit);
  section.TakeNumber("min", channel.min, -kLargestNumber, kLargestNumber);
  section.TakeNumber("max", channel.max, -kLargestNumber, kLargestNumber);
  section.TakeInteger("decimals", channel.decimals, 0, kMostDecimals);
  section.TakeNumber("hysteresis", channel.hysteresis, 0, kLargestNumber);
  section.TakeWord("active", kLevels,
                   [&channel](size_t level) { channel.active_high = level == 1; });
  section.Take("as", channel.shown_as, kOutputForm);
  section.Take("device-class", channel.device_class, kDeviceClass);
  section.Finish();
  if (channel.min != channel.max) return;
  if (section.Has("max"))
    section.Complain("max", "is the same as `min`; the two differ");
  else
    section.Complain("min", "is the same as `max`; the two differ");
}

void TakeCard(Section section, model::CardSettings& card) {
  section.TakeInteger("rows", card.rows, 1, model::kMostRows);
  section.TakeInteger("columns", card.columns, 1, model::kMostColumns);
  section.Take("signed", card.is_signed);
  section.Take("keep", card.keep);
  section.Finish();
}

bool IsCode(std::string_view text) {
  const auto bytes = protocol::ParseHexBytes(text);
  return bytes && !bytes->empty() && bytes->size() <= protocol::kMostInfraredBytes;
}

void TakeCodes(Section section, std::map<std::string, std::string>& codes) {
  for (const std::string_view key : section.Keys()) {
    if (!IsCode(key))
      section.Complain(key, "is no code; it takes up to 35 bytes in capitals: \"434F\"");
    else if (codes.size() == model::Settings::kMostCodes)
      return section.Complain(key, "is one too many; there may be 100 codes");
    else
      section.Take(key, codes[std::string(key)], kLabel);
  }
}

}  // namespace

model::Settings TakeNames(Section& file) {
  model::Settings names;
  TakeLabels(file.Open("names"), names);
  Section channels = file.Open("channel");
  for (const std::string_view key : channels.Keys()) {
    if (const auto channel = ParseChannel(key))
      TakeChannel(channels.Open(key), names.channels[*channel]);
    else
      channels.Complain(key, "is no channel; it takes one in quotes: [channel.\"F.3\"]");
  }
  Section cards = file.Open("card");
  for (const std::string_view key : cards.Keys()) {
    if (const auto card = ParseCard(key))
      TakeCard(cards.Open(key), names.cards[*card]);
    else
      cards.Complain(key, "is no card; it takes \"0\" to \"F\"");
  }
  TakeCodes(file.Open("infrared"), names.codes);
  return names;
}

}  // namespace hub::settings
