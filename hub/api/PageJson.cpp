#include "api/PageJson.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <boost/json/array.hpp>
#include <boost/json/value.hpp>
#include <string>
#include <string_view>
#include <utility>

#include "api/Parameters.h"
#include "api/Problem.h"
#include "api/Shapes.h"

namespace hub::api {

namespace json = boost::json;

namespace {

constexpr size_t kMostGroups = 16;
constexpr size_t kLongestName = 64;  // characters

template <size_t Count>
void RefuseOthers(const json::object& given, const std::string& where,
                  const std::array<std::string_view, Count>& known) {
  for (const auto& member : given)
    if (std::ranges::find(known, std::string_view(member.key())) == known.end())
      throw UnknownField(where, where == "page" ? "" : where, member.key(), known);
}

// A list, or nothing where none is given.
const json::array& ListAt(const json::object& given, std::string_view key) {
  static const json::array kNone;
  const json::value* const value = given.if_contains(key);
  if (value == nullptr || value->is_null()) return kNone;
  if (!value->is_array()) throw DoesNotFit(std::string(key), fmt::format("{} takes a list", key));
  return value->get_array();
}

// Adds addresses to `cards`, where none of them may be yet.
void AddCards(const std::string& where, const json::array& given, json::array& cards) {
  for (const json::value& card : given) {
    if (!card.is_string() || !ParseAddress(std::string_view(card.get_string())))
      throw DoesNotFit(where,
                       fmt::format("{} takes addresses: \"0\" to \"9\", \"A\" to \"F\"", where));
    if (std::ranges::find(cards, card) != cards.end())
      throw DoesNotFit(where, fmt::format("{} has the card {} twice", where,
                                          std::string_view(card.get_string())));
    cards.push_back(card);
  }
}

json::array ReadCards(const json::object& given, const std::string& key) {
  json::array cards;
  AddCards(key, ListAt(given, key), cards);
  return cards;
}

std::string ReadName(const json::object& group) {
  const json::value* const name = group.if_contains("name");
  if (name == nullptr || !name->is_string())
    throw DoesNotFit("groups.name", "groups.name takes a text");
  CheckText("groups.name", std::string_view(name->get_string()), 1, kLongestName);
  return std::string(name->get_string());
}

json::array ReadGroups(const json::object& given) {
  const json::array& list = ListAt(given, "groups");
  if (list.size() > kMostGroups)
    throw DoesNotFit("groups", fmt::format("{} groups; there may be {}", list.size(), kMostGroups));
  json::array groups;
  json::array grouped;
  for (const json::value& each : list) {
    if (!each.is_object()) throw DoesNotFit("groups", "groups takes a list of objects");
    const json::object& group = each.get_object();
    RefuseOthers(group, "groups", std::array<std::string_view, 2>{"name", "cards"});
    const auto before = static_cast<std::ptrdiff_t>(grouped.size());
    AddCards("groups.cards", ListAt(group, "cards"), grouped);
    groups.push_back(json::object{{"name", ReadName(group)},
                                  {"cards", json::array(grouped.begin() + before, grouped.end())}});
  }
  return groups;
}

}  // namespace

json::object ReadPage(const json::object& given) {
  RefuseOthers(given, "page", std::array<std::string_view, 3>{"order", "hidden", "groups"});
  json::object page;
  page["order"] = ReadCards(given, "order");
  page["hidden"] = ReadCards(given, "hidden");
  page["groups"] = ReadGroups(given);
  return page;
}

}  // namespace hub::api
