#include "api/SettingsJson.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <boost/json/value.hpp>
#include <cmath>
#include <map>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "api/Parameters.h"
#include "api/Problem.h"
#include "api/Shapes.h"
#include "model/DeviceClasses.h"
#include "protocol/Hex.h"
#include "protocol/IoCommand.h"

namespace hub::api {

namespace json = boost::json;

namespace {

constexpr size_t kLongestName = 64;  // characters
constexpr size_t kLongestUnit = 16;
constexpr double kLargestNumber = 1e9;

struct Bounds {
  double least;
  double most;
};

// A problem names the whole way to a field: "channels.F.3.unit".
std::string Below(std::string_view where, std::string_view key) {
  return fmt::format("{}.{}", where, key);
}

// Reads the keys of one card or channel that are there. Each key that Describe names is known.
class SettingsReader {
 public:
  SettingsReader(std::string where, const json::object& given)
      : where_(std::move(where)), given_(given) {}

  void Flag(std::string_view key, bool& flag) {
    if (const json::value* value = Find(key)) flag = ReadFlag(key, *value);
  }
  void Flag(std::string_view key, std::optional<bool>& flag) {
    if (const json::value* value = Find(key)) flag = ReadFlag(key, *value);
  }
  void Text(std::string_view key, std::string& text, size_t longest) {
    const json::value* const value = Find(key);
    if (value == nullptr) return;
    if (!value->is_string()) Fail(key, "takes a text");
    CheckText(Below(where_, key), std::string_view(value->get_string()), 1, longest);
    text = value->get_string();
  }
  void Number(std::string_view key, double& number, double /*usual*/, Bounds bounds) {
    if (const json::value* value = Find(key)) number = ReadNumber(key, *value, bounds);
  }
  void Whole(std::string_view key, int& number, int /*usual*/, Bounds bounds) {
    const json::value* const value = Find(key);
    if (value == nullptr) return;
    const double given = ReadNumber(key, *value, bounds);
    if (given != std::trunc(given)) Fail(key, "takes a whole number");
    number = static_cast<int>(given);
  }
  void Level(std::string_view key, std::optional<bool>& is_high) {
    const json::value* const value = Find(key);
    if (value == nullptr) return;
    if (*value != "high" && *value != "low") Fail(key, "takes high or low");
    is_high = *value == "high";
  }

  void Word(std::string_view key, std::string& word, bool (*fits)(std::string_view),
            std::string_view takes) {
    const json::value* const value = Find(key);
    if (value == nullptr) return;
    if (!value->is_string() || !fits(value->get_string()))
      Fail(key, fmt::format("takes {}", takes));
    word = value->get_string();
  }

  void RefuseUnknown() const {
    for (const auto& member : given_)
      if (std::ranges::find(known_, std::string_view(member.key())) == known_.end())
        throw UnknownField(where_, where_, member.key(), known_);
  }

 private:
  [[noreturn]] void Fail(std::string_view key, const std::string& what) const {
    const std::string where = Below(where_, key);
    throw DoesNotFit(where, fmt::format("{} {}", where, what));
  }
  const json::value* Find(std::string_view key) {
    known_.push_back(key);
    return given_.if_contains(key);
  }
  bool ReadFlag(std::string_view key, const json::value& value) const {
    if (!value.is_bool()) Fail(key, "takes true or false");
    return value.get_bool();
  }
  double ReadNumber(std::string_view key, const json::value& value, Bounds bounds) const {
    const double number = value.is_number() ? value.to_number<double>() : bounds.least - 1;
    if (number < bounds.least || number > bounds.most)
      Fail(key, fmt::format("takes a number from {} to {}", bounds.least, bounds.most));
    return number;
  }

  std::string where_;
  const json::object& given_;
  std::vector<std::string_view> known_;
};

// Writes the keys that are not as usual.
class Writer {
 public:
  void Flag(std::string_view key, bool flag) {
    if (flag) object[key] = true;
  }
  void Flag(std::string_view key, const std::optional<bool>& flag) {
    if (flag) object[key] = *flag;
  }
  void Text(std::string_view key, const std::string& text, size_t /*longest*/) {
    if (!text.empty()) object[key] = text;
  }
  void Number(std::string_view key, double number, double usual, Bounds /*bounds*/) {
    if (number == usual) return;
    if (number == std::trunc(number))
      object[key] = static_cast<int64_t>(number);
    else
      object[key] = number;
  }
  void Whole(std::string_view key, int number, int usual, Bounds /*bounds*/) {
    if (number != usual) object[key] = number;
  }
  void Level(std::string_view key, const std::optional<bool>& is_high) {
    if (is_high) object[key] = *is_high ? "high" : "low";
  }
  void Word(std::string_view key, const std::string& word, bool (* /*fits*/)(std::string_view),
            std::string_view /*takes*/) {
    if (!word.empty()) object[key] = word;
  }

  json::object object;
};

template <class Archive>
void Describe(Archive& archive, model::CardSettings& card) {
  archive.Flag("keep", card.keep);
  archive.Flag("signed", card.is_signed);
  archive.Whole("rows", card.rows, 4, {1, model::kMostRows});
  archive.Whole("columns", card.columns, 20, {1, model::kMostColumns});
}

template <class Archive>
void Describe(Archive& archive, model::ChannelSettings& channel) {
  archive.Text("unit", channel.unit, kLongestUnit);
  archive.Number("min", channel.min, 0, {-kLargestNumber, kLargestNumber});
  archive.Number("max", channel.max, 255, {-kLargestNumber, kLargestNumber});
  archive.Whole("decimals", channel.decimals, 0, {0, 6});
  archive.Number("hysteresis", channel.hysteresis, 0, {0, kLargestNumber});
  archive.Level("active", channel.active_high);
  archive.Word("as", channel.shown_as, model::IsOutputForm, "switch, light or fan");
  archive.Word("device_class", channel.device_class, model::IsDeviceClass,
               "a device class of Home Assistant, such as door or temperature");
}

// What stands below "cards" or "channels", or nothing.
const json::object& Section(const json::object& document, std::string_view key) {
  static const json::object kNone;
  const json::value* const section = document.if_contains(key);
  if (section == nullptr || section->is_null()) return kNone;
  if (!section->is_object())
    throw DoesNotFit(std::string(key), fmt::format("{} takes an object", key));
  return section->get_object();
}

void RefuseOthers(const json::object& document, std::string_view holder,
                  std::span<const std::string_view> sections) {
  for (const auto& member : document)
    if (std::ranges::find(sections, std::string_view(member.key())) == sections.end())
      throw UnknownField(holder, "", member.key(), sections);
}

unsigned CardOf(std::string_view key) {
  const auto address = ParseAddress(key);
  if (!address)
    throw DoesNotFit(Below("cards", Shown(key)),
                     "a card is named by its address: 0 to 9 or A to F");
  return *address;
}

std::pair<unsigned, unsigned> ChannelOf(std::string_view key) {
  const auto id = ParseChannel(key);
  if (!id)
    throw DoesNotFit(Below("channels", Shown(key)),
                     "a channel is named by address and number: 5.0");
  return {id->address, id->number};
}

std::string ReadName(const std::string& where, const json::value& value) {
  if (!value.is_string()) throw DoesNotFit(where, fmt::format("{} takes a text", where));
  CheckText(where, std::string_view(value.get_string()), 1, kLongestName);
  return std::string(value.get_string());
}

void CheckCode(std::string_view key) {
  const auto bytes = protocol::ParseHexBytes(key);
  if (!bytes || bytes->empty() || bytes->size() > protocol::kMostInfraredBytes)
    throw DoesNotFit(Below("infrared", Shown(key)),
                     fmt::format("a code is named by its bytes in capitals, up to {}: 434F",
                                 protocol::kMostInfraredBytes));
}

std::map<std::string, std::string> ReadCodes(const json::object& given) {
  if (given.size() > model::Settings::kMostCodes)
    throw DoesNotFit("infrared", fmt::format("{} codes; there may be {}", given.size(),
                                             model::Settings::kMostCodes));
  std::map<std::string, std::string> codes;
  for (const auto& [key, name] : given) {
    CheckCode(key);
    codes[key] = ReadName(Below("infrared", key), name);
  }
  return codes;
}

template <class Settled>
Settled ReadSettled(const std::string& where, const json::value& given, Settled settled) {
  if (!given.is_object()) throw DoesNotFit(where, fmt::format("{} takes an object", where));
  SettingsReader reader(where, given.get_object());
  Describe(reader, settled);
  reader.RefuseUnknown();
  return settled;
}

template <class Settled>
Settled OnlyName(const Settled& settled) {
  Settled named;
  named.name = settled.name;
  return named;
}

std::string ChannelKey(const std::pair<unsigned, unsigned>& id) {
  return ChannelText({id.first, id.second});
}

}  // namespace

json::object CodesJson(const model::Settings& settings) {
  json::object codes;
  for (const auto& [bytes, name] : settings.codes) codes[bytes] = name;
  return codes;
}

json::object NamesJson(const model::Settings& settings) {
  json::object cards;
  for (const auto& [address, card] : settings.cards)
    if (!card.name.empty()) cards[AddressText(address)] = card.name;
  json::object channels;
  for (const auto& [id, channel] : settings.channels)
    if (!channel.name.empty()) channels[ChannelKey(id)] = channel.name;
  json::object names;
  if (!settings.bus_name.empty()) names["bus"] = settings.bus_name;
  names["cards"] = std::move(cards);
  names["channels"] = std::move(channels);
  names["infrared"] = CodesJson(settings);
  return names;
}

json::object SetupJson(const model::Settings& settings) {
  json::object cards;
  for (auto [address, card] : settings.cards) {
    Writer writer;
    Describe(writer, card);
    if (!writer.object.empty()) cards[AddressText(address)] = std::move(writer.object);
  }
  json::object channels;
  for (auto [id, channel] : settings.channels) {
    Writer writer;
    Describe(writer, channel);
    if (!writer.object.empty()) channels[ChannelKey(id)] = std::move(writer.object);
  }
  return {{"cards", std::move(cards)}, {"channels", std::move(channels)}};
}

void ReadNames(const json::object& names, model::Settings& settings) {
  constexpr std::array<std::string_view, 4> kSections{"bus", "cards", "channels", "infrared"};
  RefuseOthers(names, "names", kSections);
  model::Settings read = settings;
  for (auto& [address, card] : read.cards) card.name.clear();
  for (auto& [id, channel] : read.channels) channel.name.clear();
  const json::value* const bus = names.if_contains("bus");
  if (bus != nullptr && !bus->is_null()) read.bus_name = ReadName("bus", *bus);
  for (const auto& [key, name] : Section(names, "cards")) {
    const unsigned address = CardOf(key);
    read.cards[address].name = ReadName(Below("cards", key), name);
  }
  for (const auto& [key, name] : Section(names, "channels")) {
    const auto id = ChannelOf(key);
    read.channels[id].name = ReadName(Below("channels", key), name);
  }
  read.codes = ReadCodes(Section(names, "infrared"));
  settings = std::move(read);
}

void ReadSetup(const json::object& setup, model::Settings& settings) {
  constexpr std::array<std::string_view, 2> kSections{"cards", "channels"};
  RefuseOthers(setup, "setup", kSections);
  model::Settings read = settings;
  for (auto& [address, card] : read.cards) card = OnlyName(card);
  for (auto& [id, channel] : read.channels) channel = OnlyName(channel);
  for (const auto& [key, given] : Section(setup, "cards")) {
    model::CardSettings& card = read.cards[CardOf(key)];
    card = ReadSettled(Below("cards", key), given, card);
  }
  for (const auto& [key, given] : Section(setup, "channels")) {
    model::ChannelSettings& channel = read.channels[ChannelOf(key)];
    const std::string where = Below("channels", key);
    channel = ReadSettled(where, given, channel);
    if (channel.min == channel.max)
      throw DoesNotFit(where, fmt::format("{}: min and max are the same", where));
  }
  settings = std::move(read);
}

}  // namespace hub::api
