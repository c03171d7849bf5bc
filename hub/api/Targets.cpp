#include "api/Targets.h"

#include <fmt/format.h>

#include <algorithm>
#include <optional>

#include "api/Parameters.h"
#include "api/Problem.h"
#include "api/Shapes.h"

namespace hub::api {

namespace json = boost::json;

namespace {

model::Value ValueOf(const json::value& value) {
  if (value.is_bool()) return value.get_bool();
  if (value.is_number()) return value.to_number<double>();
  return std::monostate{};
}

std::string ValueText(const model::Value& value) {
  if (const bool* on = std::get_if<bool>(&value)) return *on ? "on" : "off";
  return fmt::format("{}", std::get<double>(value));
}

// What would be right.
std::string Wanted(const std::optional<model::Range>& range, const std::string& unit) {
  if (!range) return "true or false";
  return fmt::format("{} to {}{}{}", range->min, range->max, unit.empty() ? "" : " ", unit);
}

std::string GivenText(const json::value& value) {
  if (value.is_number()) return fmt::format("{}", value.to_number<double>());
  if (value.is_bool()) return value.get_bool() ? "true" : "false";
  return value.is_null() ? "null" : "this";
}

}  // namespace

void RequireOutputs(const model::Card& card) {
  const std::string address = AddressText(card.address);
  if (card.state == model::CardState::kAbsent)
    throw ProblemOf(404, fmt::format("no card at {} any more", address), "id");
  if (card.Row().direction == model::Direction::kOutput) return;
  const bool is_infrared = card.kind == model::Kind::kInfrared;
  throw ProblemOf(
      409, fmt::format("card {} is of the kind {}; {}", address, card.Row().word,
                       is_infrared ? "codes go out with ir.send" : "it has no outputs to be set"));
}

link::Target TargetOf(const model::Bus& bus, const model::Card& card, unsigned number,
                      const json::value& value, std::string_view where) {
  const model::ChannelSettings settings = bus.Names().Channel(card.address, number);
  const bool is_signed = bus.Names().Card(card.address).is_signed;
  const model::ChannelForm form{card.Row(), number, settings, is_signed};
  const auto raw = model::ToRaw(form, ValueOf(value));
  if (!raw)
    throw DoesNotFit(std::string(where), fmt::format("{}; {} takes {}", GivenText(value),
                                                     ChannelText({card.address, number}),
                                                     Wanted(model::RangeOf(form), settings.unit)));
  return {number, *raw};
}

std::vector<link::Target> TargetsOf(const model::Bus& bus, const model::Card& card,
                                    const json::object& values) {
  if (values.empty()) throw DoesNotFit("values", "no channel is named; {\"0\":true} sets one");
  std::vector<link::Target> targets;
  for (const auto& member : values) {
    const std::string key(member.key());
    const auto id = ParseChannel(AddressText(card.address) + '.' + key);
    if (!id || id->number >= card.channels.size())
      throw DoesNotFit(
          Shown(key), fmt::format("card {} has no channel \"{}\"; its numbers are 0 to {}",
                                  AddressText(card.address), Shown(key), card.channels.size() - 1));
    targets.push_back(TargetOf(bus, card, id->number, member.value(), key));
  }
  return targets;
}

void RequireRoom(GlassSize glass, size_t row, size_t column, std::string_view text) {
  if (row >= glass.rows)
    throw DoesNotFit("row", fmt::format("row {}; the glass has rows 0 to {}", row, glass.rows - 1));
  if (column >= glass.columns)
    throw DoesNotFit("column", fmt::format("column {}; the glass has columns 0 to {}", column,
                                           glass.columns - 1));
  if (!std::ranges::all_of(text, [](char c) { return c >= ' ' && c <= '~'; }))
    throw DoesNotFit("text", "the glass shows printable ASCII only");
  const size_t room = glass.columns - column;
  if (text.size() > room)
    throw DoesNotFit("text",
                     fmt::format("a text of {} characters; row {} from column {} has room for {}",
                                 text.size(), row, column, room));
}

std::string TargetsText(const model::Bus& bus, const model::Card& card,
                        const std::vector<link::Target>& targets) {
  std::string text;
  for (const link::Target& target : targets) {
    const model::ChannelSettings settings = bus.Names().Channel(card.address, target.number);
    const bool is_signed = bus.Names().Card(card.address).is_signed;
    const model::Value value =
        model::ToValue({card.Row(), target.number, settings, is_signed}, target.raw);
    if (!text.empty()) text += ", ";
    text += ChannelText({card.address, target.number});
    if (!settings.name.empty()) text += fmt::format(" ({})", settings.name);
    text += ": " + ValueText(value);
  }
  return text;
}

}  // namespace hub::api
