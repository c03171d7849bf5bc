#include "boards/Said.h"

#include <algorithm>
#include <boost/json/parse.hpp>
#include <boost/json/value.hpp>
#include <charconv>
#include <cmath>
#include <utility>

#include "protocol/Hex.h"

namespace hub::boards {

namespace json = boost::json;

namespace {

constexpr size_t kLongestName = 32;   // of a board
constexpr size_t kLongestText = 256;  // bytes of any name, unit or version
constexpr size_t kLongestDetail = 1024;
constexpr size_t kDeepest = 8;
constexpr size_t kUsual = 1024;

struct Row {
  bool is_of_card;
  std::string_view word;  // empty: a channel's number
  What what;
  size_t most;  // bytes of a payload; a glass has 8 rows of 80, each character escaped at worst
};

constexpr std::array<Row, 8> kRows{{
    // clang-format off
    {false, "status", What::kStatus,     kUsual},
    {false, "bus",    What::kBus,        64 * kUsual},
    {false, "rates",  What::kRates,      kUsual},
    {false, "error",  What::kError,      4 * kUsual},
    {true,  "status", What::kCardStatus, kUsual},
    {true,  "glass",  What::kGlass,      2 * kUsual},
    {true,  "event",  What::kEvent,      kUsual},
    {true,  "",       What::kValue,      kUsual},
    // clang-format on
}};

std::string_view TakeLevel(std::string_view& rest) {
  const std::string_view level = rest.substr(0, rest.find('/'));
  rest.remove_prefix(std::min(level.size() + 1, rest.size()));
  return level;
}

bool FitsName(char letter) {
  return (letter >= 'a' && letter <= 'z') || (letter >= 'A' && letter <= 'Z') ||
         (letter >= '0' && letter <= '9') || letter == '-' || letter == '_';
}

// "0" to "15", as they are written.
std::optional<unsigned> NumberOf(std::string_view digits) {
  unsigned number = 0;
  const auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), number);
  const bool is_whole = error == std::errc() && end == digits.data() + digits.size();
  if (!is_whole || number >= Card::kMostChannels || digits != std::to_string(number))
    return std::nullopt;
  return number;
}

// No C0, DEL or C1 (as UTF-8 has them: C2 80 to C2 9F).
bool IsPlain(std::string_view text) {
  unsigned char last = 0;
  for (const char letter : text) {
    const auto byte = static_cast<unsigned char>(letter);
    if (byte < ' ' || byte == 0x7F || (last == 0xC2 && byte < 0xA0)) return false;
    last = byte;
  }
  return true;
}

// What is of another form is thrown, and caught by whoever reads a whole payload.
struct Odd {};

void Require(bool holds) {
  if (!holds) throw Odd{};
}

json::value Parse(std::string_view payload) {
  json::parse_options options;
  options.max_depth = kDeepest;
  json::error_code error;
  json::value value = json::parse(payload, error, {}, options);
  Require(!error && value.is_object());
  return value;
}

const json::value& At(const json::object& object, std::string_view key) {
  static const json::value kNull;
  const json::value* const found = object.if_contains(key);
  return found == nullptr ? kNull : *found;
}

// Null, or nothing at all, is an empty one.
std::string TextAt(const json::object& object, std::string_view key, size_t most = kLongestText) {
  const json::value& value = At(object, key);
  if (value.is_null()) return {};
  Require(value.is_string() && value.get_string().size() <= most);
  std::string text(value.get_string());
  Require(IsPlain(text));
  return text;
}

std::optional<bool> FlagAt(const json::object& object, std::string_view key) {
  const json::value& value = At(object, key);
  if (value.is_null()) return std::nullopt;
  Require(value.is_bool());
  return value.get_bool();
}

// Where there is none, the first of these.
std::string WordAt(const json::object& object, std::string_view key,
                   std::initializer_list<std::string_view> words) {
  std::string word = TextAt(object, key);
  if (word.empty()) return std::string(*words.begin());
  Require(std::ranges::find(words, word) != words.end());
  return word;
}

// Null, or nothing at all, is an empty one.
const json::object& ObjectAt(const json::object& object, std::string_view key) {
  static const json::object kEmpty;
  const json::value& value = At(object, key);
  if (value.is_null()) return kEmpty;
  Require(value.is_object());
  return value.get_object();
}

std::optional<double> NumberAt(const json::object& object, std::string_view key) {
  const json::value& value = At(object, key);
  if (value.is_null()) return std::nullopt;
  Require(value.is_number());
  const auto number = value.to_number<double>();
  Require(std::isfinite(number));
  return number;
}

Settled ReadSettled(const json::value& value) {
  Require(value.is_object());
  const json::object& object = value.get_object();
  Settled settled{TextAt(object, "name"), TextAt(object, "unit"), std::nullopt};
  const auto min = NumberAt(object, "min");
  const auto max = NumberAt(object, "max");
  if (min && max) settled.range = model::Range{*min, *max};
  return settled;
}

void ReadCard(const json::value& value, BusSaid& said) {
  Require(value.is_object());
  const json::object& object = value.get_object();
  const std::string address = TextAt(object, "address");
  Require(address.size() == 1);
  const auto place = protocol::ParseHexDigit(address.front());
  Require(place && said.cards[*place].kind == nullptr);
  CardEntry& entry = said.cards[*place];
  entry.kind = &model::FindWord(TextAt(object, "kind"));
  entry.name = TextAt(object, "name");
  const std::string state = WordAt(object, "state", {"present", "silent", "absent"});
  if (state == "absent") return void(entry = {});
  entry.is_present = state == "present";
  const json::value& channels = At(object, "channels");
  if (!channels.is_object()) return;
  for (const auto& member : channels.get_object()) {
    const auto number = NumberOf(std::string_view(member.key()));
    Require(number.has_value());
    entry.settled[*number] = ReadSettled(member.value());
  }
}

Identity ReadIdentity(const json::object& object) {
  Identity identity;
  identity.id = TextAt(object, "id");
  Require(IsId(identity.id));
  identity.name = TextAt(object, "name");
  identity.version = TextAt(object, "version");
  const json::object& daemon = ObjectAt(object, "daemon");
  identity.daemon_state = WordAt(daemon, "state", {"absent", "waiting", "up"});
  identity.daemon_version = TextAt(daemon, "version");
  const json::object& adapter = ObjectAt(object, "adapter");
  identity.adapter_state = WordAt(adapter, "state", {"unknown", "down", "up"});
  identity.adapter_device = TextAt(adapter, "device");
  identity.adapter_version = TextAt(adapter, "version");
  identity.is_virtual = FlagAt(object, "virtual").value_or(false);
  return identity;
}

template <class Read>
auto OrNothing(Read read) -> std::optional<decltype(read())> {
  try {
    return read();
  } catch (const Odd&) {
    return std::nullopt;
  }
}

}  // namespace

bool IsId(std::string_view text) {
  constexpr size_t kDigits = 8;
  return text.size() == kDigits &&
         text.find_first_not_of("0123456789abcdef") == std::string_view::npos;
}

std::optional<std::string_view> BoardIn(std::string_view topic) {
  if (TakeLevel(topic) != "qelm") return std::nullopt;
  const std::string_view name = TakeLevel(topic);
  if (name.empty() || name.size() > kLongestName || !std::ranges::all_of(name, FitsName))
    return std::nullopt;
  return name;
}

std::variant<Place, std::string> ReadTopic(std::string_view topic) {
  const auto board = BoardIn(topic);
  if (!board) return "a name that no board has";
  std::string_view rest = topic.substr(std::string_view("qelm/").size() + board->size());
  TakeLevel(rest);
  std::string_view word = TakeLevel(rest);
  Place place{*board, What::kStatus};
  const bool is_of_card = !rest.empty();
  if (is_of_card) {
    const auto address = word.size() == 1 ? protocol::ParseHexDigit(word.front()) : std::nullopt;
    if (!address) return "a topic of no card";
    place.address = *address;
    word = rest;
  }
  const auto number = is_of_card ? NumberOf(word) : std::nullopt;
  for (const Row& row : kRows) {
    if (row.is_of_card != is_of_card) continue;
    if (row.word.empty() ? !number : row.word != word) continue;
    place.what = row.what;
    place.number = number.value_or(0);
    place.most = row.most;
    return place;
  }
  return "a topic that is not known";
}

std::optional<bool> ReadStatus(std::string_view payload) {
  if (payload == "online") return true;
  if (payload == "offline") return false;
  return std::nullopt;
}

std::optional<model::Value> ReadValue(std::string_view payload) {
  if (payload == "None") return model::Value{};
  if (payload == "ON") return model::Value{true};
  if (payload == "OFF") return model::Value{false};
  double number = 0;
  const char* const end = payload.data() + payload.size();
  const auto [rest, error] = std::from_chars(payload.data(), end, number);
  if (error != std::errc() || rest != end || !std::isfinite(number)) return std::nullopt;
  return model::Value{number};
}

bool Fits(const model::Value& value, const model::KindRow& kind) {
  if (std::holds_alternative<std::monostate>(value)) return true;
  return model::HasLines(kind) == std::holds_alternative<bool>(value);
}

std::optional<Glass> ReadGlass(std::string_view payload) {
  return OrNothing([payload] {
    const json::value parsed = Parse(payload);
    const json::object& object = parsed.get_object();
    const json::value& rows = At(object, "rows");
    Require(rows.is_array() && !rows.get_array().empty() &&
            rows.get_array().size() <= Glass::kMostRows);
    Glass glass;
    for (const json::value& row : rows.get_array()) {
      Require(row.is_string() && !row.get_string().empty());
      std::string text(row.get_string());
      Require(text.size() <= Glass::kMostColumns);
      Require(glass.rows.empty() || text.size() == glass.rows.front().size());
      Require(
          std::ranges::all_of(text, [](char letter) { return letter >= ' ' && letter <= '~'; }));
      glass.rows.push_back(std::move(text));
    }
    glass.light = FlagAt(object, "light");
    glass.cursor = FlagAt(object, "cursor");
    glass.blink = FlagAt(object, "blink");
    return glass;
  });
}

std::optional<BusSaid> ReadBus(std::string_view payload) {
  return OrNothing([payload] {
    const json::value parsed = Parse(payload);
    const json::object& object = parsed.get_object();
    BusSaid said;
    said.identity = ReadIdentity(object);
    const json::value& cards = At(object, "cards");
    Require(cards.is_array() && cards.get_array().size() <= said.cards.size());
    for (const json::value& card : cards.get_array()) ReadCard(card, said);
    return said;
  });
}

std::optional<Complaint> ReadComplaint(std::string_view payload) {
  return OrNothing([payload] {
    constexpr double kLeast = 400;
    constexpr double kMost = 599;
    const json::value parsed = Parse(payload);
    const json::object& object = parsed.get_object();
    const auto status = NumberAt(object, "status");
    Require(status && *status >= kLeast && *status <= kMost);
    return Complaint{TextAt(object, "topic"), static_cast<int>(*status),
                     TextAt(object, "detail", kLongestDetail), TextAt(object, "where")};
  });
}

}  // namespace hub::boards
