#include "api/Json.h"

#include <algorithm>
#include <array>
#include <boost/json/parse.hpp>
#include <boost/json/serialize.hpp>
#include <charconv>
#include <cmath>
#include <utility>

namespace hub::api {

namespace json = boost::json;

namespace {

constexpr size_t kDeepest = 16;

// Of a text that is JSON: there is one colon a member outside of strings.
size_t CountColons(std::string_view text) {
  size_t count = 0;
  bool in_string = false;
  for (size_t at = 0; at < text.size(); ++at) {
    if (in_string && text[at] == '\\')
      ++at;
    else if (text[at] == '"')
      in_string = !in_string;
    else if (!in_string && text[at] == ':')
      ++count;
  }
  return count;
}

size_t CountMembers(const json::value& value) {
  size_t count = 0;
  if (const auto* object = value.if_object()) {
    count = object->size();
    for (const auto& member : *object) count += CountMembers(member.value());
  } else if (const auto* array = value.if_array()) {
    for (const json::value& item : *array) count += CountMembers(item);
  }
  return count;
}

bool HasOnlyFiniteNumbers(const json::value& value) {
  if (const auto* number = value.if_double()) return std::isfinite(*number);
  if (const auto* object = value.if_object()) {
    for (const auto& member : *object)
      if (!HasOnlyFiniteNumbers(member.value())) return false;
  } else if (const auto* array = value.if_array()) {
    for (const json::value& item : *array)
      if (!HasOnlyFiniteNumbers(item)) return false;
  }
  return true;
}

void Append(double number, std::string& text) {
  if (!std::isfinite(number)) {
    text += "null";
    return;
  }
  std::array<char, 32> digits{};
  const auto end = std::to_chars(digits.data(), digits.data() + digits.size(), number).ptr;
  text.append(digits.data(), end);
}

void Append(const json::value& value, std::string& text);

void Append(const json::object& object, std::string& text) {
  text += '{';
  for (const auto& member : object) {
    if (text.back() != '{') text += ',';
    text += json::serialize(member.key());
    text += ':';
    Append(member.value(), text);
  }
  text += '}';
}

void Append(const json::array& array, std::string& text) {
  text += '[';
  for (const json::value& item : array) {
    if (text.back() != '[') text += ',';
    Append(item, text);
  }
  text += ']';
}

void Append(const json::value& value, std::string& text) {
  if (const auto* object = value.if_object())
    Append(*object, text);
  else if (const auto* array = value.if_array())
    Append(*array, text);
  else if (const auto* number = value.if_double())
    Append(*number, text);
  else
    text += json::serialize(value);
}

// Bytes of the character of UTF-8 that the text begins with; 0 where it begins with none.
size_t LengthOfCharacter(std::string_view text) {
  const auto byte = [text](size_t at) {
    return at < text.size() ? static_cast<unsigned char>(text[at]) : 0U;
  };
  const unsigned first = byte(0);
  if (first < 0x80) return 1;
  if (first < 0xC2 || first > 0xF4) return 0;
  const size_t length = first < 0xE0 ? 2 : first < 0xF0 ? 3 : 4;
  for (size_t at = 1; at < length; ++at)
    if ((byte(at) & 0xC0U) != 0x80) return 0;
  // Longer than it need be, half of a pair, behind the last one.
  const unsigned second = byte(1);
  const bool is_none = (first == 0xE0 && second < 0xA0) || (first == 0xED && second > 0x9F) ||
                       (first == 0xF0 && second < 0x90) || (first == 0xF4 && second > 0x8F);
  return is_none ? 0 : length;
}

// The daemon repeats what it does not understand as it came, whatever bytes that were.
std::string WithWholeCharacters(std::string text) {
  const auto is_plain = [](char byte) { return static_cast<unsigned char>(byte) < 0x80; };
  if (std::ranges::all_of(text, is_plain)) return text;
  constexpr std::string_view kReplacement = "\xEF\xBF\xBD";
  std::string whole;
  for (std::string_view rest = text; !rest.empty();) {
    const size_t length = LengthOfCharacter(rest);
    whole += length == 0 ? kReplacement : rest.substr(0, length);
    rest.remove_prefix(std::max<size_t>(length, 1));
  }
  return whole;
}

}  // namespace

std::variant<json::value, Problem> ParseJson(std::string_view text) {
  json::parse_options options;
  options.max_depth = kDeepest;
  json::error_code error;
  json::value value = json::parse(text, error, {}, options);
  if (error) return ProblemOf(400, "this is no JSON: " + error.message());
  if (CountColons(text) != CountMembers(value))
    return ProblemOf(400, "a key comes twice in one object");
  if (!HasOnlyFiniteNumbers(value)) return ProblemOf(400, "a number is too large");
  return value;
}

std::string ToText(const json::value& value) {
  std::string text;
  Append(value, text);
  return WithWholeCharacters(std::move(text));
}

}  // namespace hub::api
