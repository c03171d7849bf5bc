#include "api/Parameters.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <utility>
#include <vector>

#include "api/Times.h"
#include "model/Text.h"

namespace hub::api {

namespace json = boost::json;

namespace {

constexpr double kLargestWhole = 9'007'199'254'740'992;  // up to here a double holds each one

// By Type.
constexpr std::array<std::string_view, 8> kTypeTexts{"a text",
                                                     "a whole number",
                                                     "a number",
                                                     "true or false",
                                                     "an object",
                                                     "a list",
                                                     "a time (RFC 3339 or milliseconds since 1970)",
                                                     "any value"};

std::string_view TextOf(Type type) { return kTypeTexts[static_cast<size_t>(type)]; }

bool IsPrintable(std::string_view text) {
  return std::ranges::all_of(text, [](char c) { return c >= ' ' && c <= '~'; });
}

bool ComesAsText(const Parameter& parameter) {
  return parameter.place == Place::kPath || parameter.place == Place::kQuery;
}

std::optional<double> ParseNumber(std::string_view text) {
  double number = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
  if (error != std::errc() || end != text.data() + text.size() || !std::isfinite(number))
    return std::nullopt;
  return number;
}

std::optional<json::value> WholeNumber(const json::value& value) {
  if (value.is_int64()) return value;
  if (!value.is_double()) return std::nullopt;
  const double number = value.get_double();
  if (number != std::trunc(number) || std::abs(number) > kLargestWhole) return std::nullopt;
  return static_cast<int64_t>(number);
}

std::optional<json::value> FromText(Type type, std::string_view text) {
  if (type == Type::kBoolean) {
    if (text == "1" || text == "true") return true;
    if (text == "0" || text == "false") return false;
    return std::nullopt;
  }
  if (type == Type::kTime) return ParseTime(text);
  const auto number = ParseNumber(text);
  if (!number || type == Type::kNumber) return number;
  return WholeNumber(*number);
}

// The value as its type has it; nothing where it is of another type.
std::optional<json::value> Converted(const Parameter& parameter, const json::value& value) {
  const Type type = parameter.type;
  const bool is_of_text = type == Type::kInteger || type == Type::kNumber ||
                          type == Type::kBoolean || type == Type::kTime;
  if (value.is_string() && is_of_text && (ComesAsText(parameter) || type == Type::kTime))
    return FromText(type, value.get_string());
  switch (type) {
    case Type::kText:
      return value.is_string() ? std::optional(value) : std::nullopt;
    case Type::kInteger:
      return WholeNumber(value);
    case Type::kNumber:
      return value.is_number() ? std::optional<json::value>(value.to_number<double>())
                               : std::nullopt;
    case Type::kBoolean:
      return value.is_bool() ? std::optional(value) : std::nullopt;
    case Type::kObject:
      return value.is_object() ? std::optional(value) : std::nullopt;
    case Type::kList:
      return value.is_array() ? std::optional(value) : std::nullopt;
    case Type::kTime: {
      auto time = WholeNumber(value);
      if (time && (time->get_int64() < 0 || time->get_int64() > kLastTime)) time.reset();
      return time;
    }
    case Type::kValue:
      return value;
  }
  return std::nullopt;
}

void CheckRange(const Parameter& parameter, const json::value& value) {
  if (!parameter.words.empty()) {
    const std::string_view text = value.get_string();
    if (std::ranges::find(parameter.words, text) == parameter.words.end())
      throw DoesNotFit(std::string(parameter.name),
                       fmt::format("{} takes {}", parameter.name, Listed(parameter.words)));
  } else if (parameter.type == Type::kText) {
    CheckText(parameter.name, std::string_view(value.get_string()),
              static_cast<size_t>(parameter.least), static_cast<size_t>(parameter.most));
  } else if (value.is_number() && (parameter.least != 0 || parameter.most != 0)) {
    const auto number = value.to_number<double>();
    if (number < parameter.least || number > parameter.most)
      throw DoesNotFit(std::string(parameter.name),
                       fmt::format("{}; {} takes {} to {}", number, parameter.name, parameter.least,
                                   parameter.most));
  }
}

const Parameter* Find(const Method& method, std::string_view name) {
  const auto found = std::ranges::find(method.parameters, name, &Parameter::name);
  return found == method.parameters.end() ? nullptr : &*found;
}

Problem UnknownName(const Method& method, std::string_view name) {
  std::vector<std::string_view> known;
  for (const Parameter& parameter : method.parameters) known.push_back(parameter.name);
  return UnknownField(method.name, "", name, known);
}

size_t CountCharacters(std::string_view text) {
  return static_cast<size_t>(std::ranges::count_if(
      text, [](char c) { return (static_cast<uint8_t>(c) & 0xC0U) != 0x80; }));
}

}  // namespace

Problem UnknownField(std::string_view holder, std::string_view way, std::string_view name,
                     std::span<const std::string_view> known) {
  const std::string shown = Shown(name);
  return DoesNotFit(way.empty() ? shown : fmt::format("{}.{}", way, shown),
                    fmt::format("{} has no \"{}\"; it has {}", holder, shown,
                                known.empty() ? "no parameters" : Listed(known, "and")));
}

std::string Shown(std::string_view name) {
  constexpr size_t kLongest = 32;
  std::string shown(name.substr(0, kLongest));
  std::ranges::replace_if(
      shown, [](char c) { return c < ' ' || c > '~'; }, '?');
  return name.size() > kLongest ? shown + "..." : shown;
}

std::string Listed(std::span<const std::string_view> words, std::string_view last) {
  std::string list;
  for (size_t i = 0; i < words.size(); ++i) {
    if (i > 0) list += i + 1 == words.size() ? fmt::format(" {} ", last) : ", ";
    list += words[i];
  }
  return list;
}

void CheckText(std::string_view where, std::string_view text, size_t least, size_t most) {
  if (model::HasControls(text))
    throw DoesNotFit(std::string(where), fmt::format("{} holds a control character; only "
                                                     "characters that can be seen go through",
                                                     where));
  const size_t count = CountCharacters(text);
  if (most > 0 && (count < least || count > most))
    throw DoesNotFit(std::string(where), fmt::format("a text of {} characters; {} takes {} to {}",
                                                     count, where, least, most));
}

void CheckParameters(const Method& method, json::object& parameters) {
  for (const auto& member : parameters)
    if (Find(method, member.key()) == nullptr) throw UnknownName(method, member.key());
  for (const Parameter& parameter : method.parameters) {
    json::value* const value = parameters.if_contains(parameter.name);
    if (value != nullptr && value->is_null() && parameter.type != Type::kValue) {
      parameters.erase(parameter.name);
    } else if (value != nullptr) {
      auto converted = Converted(parameter, *value);
      if (!converted)
        throw DoesNotFit(std::string(parameter.name),
                         fmt::format("{} takes {}", parameter.name, TextOf(parameter.type)));
      CheckRange(parameter, *converted);
      *value = std::move(*converted);
    }
    if (parameter.required && !parameters.contains(parameter.name))
      throw DoesNotFit(std::string(parameter.name),
                       fmt::format("{} is missing: {}", parameter.name, parameter.summary));
  }
}

std::optional<Problem> AddQuery(const Method& method, std::string_view name, std::string_view value,
                                json::object& parameters) {
  const Parameter* const parameter = Find(method, name);
  if (parameter == nullptr || parameter->place != Place::kQuery) return UnknownName(method, name);
  if (parameters.contains(name))
    return DoesNotFit(std::string(name), fmt::format("{} comes twice", name));
  if (!IsPrintable(value))
    return DoesNotFit(std::string(name), fmt::format("{} takes printable ASCII", name));
  parameters[name] = value;
  return std::nullopt;
}

std::optional<Problem> AddBody(const Method& method, const json::value& body,
                               json::object& parameters) {
  const auto whole = std::ranges::find(method.parameters, Place::kWholeBody, &Parameter::place);
  if (whole != method.parameters.end()) {
    parameters[whole->name] = body;
    return std::nullopt;
  }
  const auto* const object = body.if_object();
  if (object == nullptr) return DoesNotFit("", "the body has to be an object");
  for (const auto& member : *object) {
    const Parameter* const parameter = Find(method, member.key());
    if (parameter == nullptr || parameter->place != Place::kBody)
      return UnknownName(method, member.key());
    parameters[member.key()] = member.value();
  }
  return std::nullopt;
}

}  // namespace hub::api
