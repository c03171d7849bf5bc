#include "commands/Show.h"

#include <boost/json/array.hpp>

#include "base/Json.h"
#include "base/Text.h"

namespace ctl {

namespace json = boost::json;

namespace {

Cell StateCell(const std::string& state) {
  if (state == "present") return {state, Colour::kNone};
  return {state, state == "silent" ? Colour::kRed : Colour::kFaint};
}

// Lines as a row of digits, lamps first to last; numbers one behind the other.
std::string Summary(const json::value& card) {
  if (At(card, "glass").is_object()) {
    std::vector<std::string> rows;
    for (const auto& row : ItemsAt(At(card, "glass"), "rows"))
      rows.push_back("\"" + std::string(row.is_string() ? row.get_string() : "") + "\"");
    return rows.empty() ? "" : rows[0] + (rows.size() > 1 ? " ..." : "");
  }
  std::string text;
  bool was_number = false;
  for (const auto& channel : ItemsAt(card, "channels")) {
    const json::value& value = At(channel, "value");
    const bool is_line = value.is_bool();
    const std::string one = is_line           ? (value.get_bool() ? "1" : "0")
                            : value.is_null() ? "-"
                                              : ValueText(value);
    if (!text.empty() && (was_number || !(is_line || value.is_null()))) text += " ";
    was_number = !is_line && !value.is_null();
    text += one;
  }
  return text;
}

std::vector<Cell> ChannelRow(const json::value& channel) {
  return {{TextAt(channel, "id"), Colour::kBold}, {TextAt(channel, "name")}, ValueCell(channel)};
}

}  // namespace

Cell ValueCell(const json::value& channel) {
  const json::value& value = At(channel, "value");
  std::string text = ValueText(value);
  const std::string unit = TextAt(channel, "unit");
  if (!value.is_null() && !unit.empty()) text += " " + unit;
  if (BoolAt(channel, "pending")) return {text + " (pending)", Colour::kYellow};
  if (BoolAt(channel, "assumed") && !value.is_null()) return {text + " (assumed)", Colour::kFaint};
  if (!At(channel, "stale_since").is_null()) return {text + " (stale)", Colour::kFaint};
  if (value.is_null()) return {text, Colour::kFaint};
  return {text, value == json::value(true) ? Colour::kYellow : Colour::kNone};
}

std::string CardsText(const json::value& cards, const Paint& paint) {
  Table table;
  for (const auto& card : ItemsAt(cards, "cards"))
    table.Add({{TextAt(card, "address"), Colour::kBold},
               {TextAt(card, "kind")},
               {TextAt(card, "name")},
               StateCell(TextAt(card, "state")),
               {Summary(card)}});
  return table.Text(paint);
}

std::string CardText(const json::value& card, const Paint& paint) {
  if (At(card, "glass").is_object()) return GlassText(At(card, "glass"));
  Table table;
  for (const auto& channel : ItemsAt(card, "channels")) table.Add(ChannelRow(channel));
  return table.Text(paint);
}

std::string ChannelText(const json::value& channel, const Paint& paint) {
  Table table;
  table.Add(ChannelRow(channel));
  return table.Text(paint);
}

std::string GlassText(const json::value& glass) {
  std::vector<std::string> rows;
  size_t width = 0;
  for (const auto& row : ItemsAt(glass, "rows")) {
    rows.push_back(row.is_string() ? Printable(row.get_string()) : std::string());
    width = std::max(width, Width(rows.back()));
  }
  const std::string edge = "+" + std::string(width, '-') + "+";
  std::string text = edge + (BoolAt(glass, "light") ? "" : "  light off") + "\n";
  for (const std::string& row : rows)
    text += "|" + row + std::string(width - Width(row), ' ') + "|\n";
  return text + edge + "\n";
}

}  // namespace ctl
