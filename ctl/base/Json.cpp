#include "base/Json.h"

#include <array>
#include <boost/json/array.hpp>
#include <boost/json/object.hpp>
#include <boost/json/serialize.hpp>
#include <charconv>

#include "base/Text.h"

namespace ctl {

namespace json = boost::json;

namespace {

std::optional<double> AsNumber(const json::value& value) {
  if (!value.is_number()) return std::nullopt;
  return value.to_number<double>();
}

}  // namespace

const json::value& At(const json::value& object, std::string_view key) {
  static const json::value kNull;
  if (!object.is_object()) return kNull;
  const json::value* found = object.get_object().if_contains(key);
  return found != nullptr ? *found : kNull;
}

std::string TextAt(const json::value& object, std::string_view key) {
  const json::value& value = At(object, key);
  return value.is_string() ? std::string(value.get_string()) : std::string();
}

bool BoolAt(const json::value& object, std::string_view key) {
  const json::value& value = At(object, key);
  return value.is_bool() && value.get_bool();
}

std::optional<double> NumberAt(const json::value& object, std::string_view key) {
  return AsNumber(At(object, key));
}

const json::array& ItemsAt(const json::value& object, std::string_view key) {
  static const json::array kNone;
  const json::value& value = At(object, key);
  return value.is_array() ? value.get_array() : kNone;
}

std::string ValueText(const json::value& value) {
  if (value.is_null()) return "unknown";
  if (value.is_bool()) return value.get_bool() ? "on" : "off";
  if (value.is_string()) return Printable(value.get_string());
  const auto number = AsNumber(value);
  if (!number) return Printable(json::serialize(value));
  // The shortest text that reads back as the same number.
  std::array<char, 32> text{};
  const auto end = std::to_chars(text.data(), text.data() + text.size(), *number).ptr;
  return {text.data(), end};
}

}  // namespace ctl
