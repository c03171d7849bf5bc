#include "mqtt/Commands.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <optional>
#include <utility>

#include "api/Json.h"
#include "api/Problem.h"
#include "api/Shapes.h"

namespace hub::mqtt {

namespace json = boost::json;

namespace {

using api::DoesNotFit;
using api::Problem;
using api::ProblemOf;

// What is left of a topic behind the root, without "/set" at its end.
struct Asked {
  std::string_view place;  // of the card: "5"; or "bus"
  std::string_view what;   // "0", "row/1", "text"
  std::string_view payload;
};

using Commands = std::vector<Command>;

Command CommandOf(std::string_view method, json::object parameters,
                  access::Role role = access::Role::kUse) {
  return {api::FindMethod(method), std::move(parameters), role};
}

json::value ParseOrThrow(std::string_view text) {
  auto parsed = api::ParseJson(text);
  if (const auto* problem = std::get_if<Problem>(&parsed)) throw *problem;
  return std::get<json::value>(std::move(parsed));
}

bool IsOn(const Asked& asked) {
  if (asked.payload == "ON") return true;
  if (asked.payload != "OFF") throw DoesNotFit("payload", "this takes ON or OFF");
  return false;
}

// ON, OFF, a number; or an object as the API takes it: {"value":true,"pulse":500}.
json::object SetParameters(const api::Method& method, std::string_view payload) {
  if (payload == "ON") return {{"value", true}};
  if (payload == "OFF") return {{"value", false}};
  json::value value = ParseOrThrow(payload);
  if (!value.is_object()) return {{"value", std::move(value)}};
  json::object parameters;
  if (const auto problem = api::AddBody(method, value, parameters)) throw *problem;
  return parameters;
}

Commands SetChannel(const model::Bus&, const Asked& asked) {
  const api::Method* const method = api::FindMethod("channels.set");
  json::object parameters = SetParameters(*method, asked.payload);
  parameters["id"] = fmt::format("{}.{}", asked.place, asked.what);
  return {{method, std::move(parameters), access::Role::kUse}};
}

// Nothing where there is none: the method says what is wrong then.
const model::Glass* GlassAt(const model::Bus& bus, std::string_view place) {
  const auto address = api::ParseAddress(place);
  const model::Card* const card = address ? bus.At(*address) : nullptr;
  return card != nullptr && card->glass ? &*card->glass : nullptr;
}

// A whole row: what is behind the text becomes blank.
Command RowCommand(const model::Glass* glass, const Asked& asked, unsigned row, std::string text) {
  const size_t columns = glass == nullptr ? 1 : glass->ColumnCount();
  if (text.size() < columns) text.resize(columns, ' ');
  if (glass != nullptr && text.size() > columns)
    throw DoesNotFit("text", fmt::format("a text of {} characters; row {} has room for {}",
                                         text.size(), row, columns));
  const auto is_printable = [](char letter) { return letter >= ' ' && letter <= '~'; };
  if (!std::ranges::all_of(text, is_printable))
    throw DoesNotFit("text", "the glass shows printable ASCII only");
  return CommandOf("lcd.write", {{"address", asked.place},
                                 {"row", static_cast<int64_t>(row)},
                                 {"column", 0},
                                 {"text", text}});
}

Commands WriteRow(const model::Bus& bus, const Asked& asked) {
  constexpr std::string_view kBefore = "row/";
  const std::string_view number = asked.what.substr(kBefore.size());
  if (number.size() != 1 || number[0] < '0' || number[0] > '9')
    throw ProblemOf(404, "rows are row/0, row/1 and so on");
  return {RowCommand(GlassAt(bus, asked.place), asked, static_cast<unsigned>(number[0] - '0'),
                     std::string(asked.payload))};
}

// The whole glass, its rows parted by LF.
Commands WriteGlass(const model::Bus& bus, const Asked& asked) {
  const model::Glass* const glass = GlassAt(bus, asked.place);
  const unsigned most = glass == nullptr ? 1 : glass->RowCount();
  std::string_view rest = asked.payload;
  if (rest.ends_with('\n')) rest.remove_suffix(1);
  const auto given = static_cast<unsigned>(std::ranges::count(rest, '\n')) + 1;
  if (glass != nullptr && given > most)
    throw DoesNotFit("text", fmt::format("a text of {} rows; the glass has {}", given, most));
  Commands commands;
  for (unsigned row = 0; row < most; ++row) {
    const std::string_view text = rest.substr(0, rest.find('\n'));
    rest.remove_prefix(std::min(text.size() + 1, rest.size()));
    commands.push_back(RowCommand(glass, asked, row, std::string(text)));
  }
  return commands;
}

Commands SwitchLight(const model::Bus&, const Asked& asked) {
  const char* const word = IsOn(asked) ? "light-on" : "light-off";
  return {CommandOf("lcd.control", {{"address", asked.place}, {"do", word}})};
}

Commands SendCode(const model::Bus&, const Asked& asked) {
  return {CommandOf("ir.send", {{"address", asked.place}, {"bytes", asked.payload}})};
}

Commands Discover(const model::Bus&, const Asked&) {
  return {CommandOf("bus.discover", {}, access::Role::kAdmin)};
}

Commands SetPace(const model::Bus&, const Asked& asked) {
  return {CommandOf("bus.pace", {{"pace", ParseOrThrow(asked.payload)}}, access::Role::kAdmin)};
}

struct Row {
  std::string_view place;  // "bus", or empty: a card
  std::string_view what;   // the whole of it; one that ends in "/" begins so; empty: any number
  Commands (*read)(const model::Bus& bus, const Asked& asked);
  bool has_lines = false;  // the payload may hold LF
};

// The two of the bus are an admin's elsewhere. Here they may be used by whoever may write to the
// topic, as the bus's device in home automation has them.
constexpr std::array<Row, 7> kRows{{
    // clang-format off
    {"bus", "discover", &Discover},
    {"bus", "pace",     &SetPace},
    {"",    "row/",     &WriteRow},
    {"",    "text",     &WriteGlass, true},
    {"",    "light",    &SwitchLight},
    {"",    "infrared", &SendCode},
    {"",    "",         &SetChannel},
    // clang-format on
}};

void RequireVisible(const Row& row, std::string_view payload) {
  const auto is_control = [&row](char letter) {
    const auto byte = static_cast<unsigned char>(letter);
    return (byte < ' ' && !(row.has_lines && letter == '\n')) || byte == 0x7F;
  };
  if (std::ranges::any_of(payload, is_control))
    throw DoesNotFit("payload", "the payload holds a control character");
}

bool IsNumber(std::string_view text) {
  return !text.empty() && std::ranges::all_of(text, [](char c) { return c >= '0' && c <= '9'; });
}

bool Matches(const Row& row, const Asked& asked) {
  if ((row.place == "bus") != (asked.place == "bus")) return false;
  if (row.what.empty()) return IsNumber(asked.what);
  return row.what.ends_with('/') ? asked.what.starts_with(row.what) : asked.what == row.what;
}

std::optional<Asked> Split(const Topics& topics, const Message& message) {
  constexpr std::string_view kEnd = "/set";
  std::string_view rest = message.topic;
  if (!rest.starts_with(topics.Root()) || !rest.ends_with(kEnd)) return std::nullopt;
  rest.remove_prefix(topics.Root().size());
  rest.remove_suffix(std::min(kEnd.size(), rest.size()));
  const size_t slash = rest.find('/');
  if (slash == std::string_view::npos) return std::nullopt;
  return Asked{rest.substr(0, slash), rest.substr(slash + 1), message.payload};
}

void RequireSound(const Arrived& arrived) {
  if (arrived.message.is_retained)
    throw ProblemOf(409,
                    "a retained command, which is thrown away: it would be done again at "
                    "each connection");
  if (arrived.size > Arrived::kMostPayload)
    throw ProblemOf(413, fmt::format("a payload of {} bytes; a command has at most {}",
                                     arrived.size, Arrived::kMostPayload));
}

Commands Read(const Topics& topics, const model::Bus& bus, const Arrived& arrived) {
  RequireSound(arrived);
  if (const auto asked = Split(topics, arrived.message))
    for (const Row& row : kRows)
      if (Matches(row, *asked)) {
        RequireVisible(row, asked->payload);
        return row.read(bus, *asked);
      }
  throw ProblemOf(404, "no command has this topic");
}

}  // namespace

std::vector<std::string> CommandFilters(const Topics& topics) {
  return {topics.Root() + "+/+/set", topics.Root() + "+/row/+/set"};
}

std::variant<Commands, Problem> ReadCommand(const Topics& topics, const model::Bus& bus,
                                            const Arrived& arrived) {
  try {
    return Read(topics, bus, arrived);
  } catch (const Problem& problem) {
    return problem;
  }
}

}  // namespace hub::mqtt
