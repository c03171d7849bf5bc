#include "base/Values.h"

#include <boost/json/array.hpp>
#include <charconv>
#include <cmath>
#include <optional>

#include "base/Failure.h"
#include "base/Text.h"

namespace ctl {

namespace json = boost::json;

namespace {

struct Word {
  std::string_view text;
  bool value;
};
constexpr Word kOnOff[] = {{"on", true}, {"off", false}, {"true", true}, {"false", false}};

std::optional<bool> FindOnOff(const std::string& text) {
  for (const Word& word : kOnOff)
    if (Lower(text) == word.text) return word.value;
  return std::nullopt;
}

std::optional<int64_t> ReadWhole(std::string_view text) {
  const bool hex = text.starts_with("0x") || text.starts_with("0X");
  if (hex) text.remove_prefix(2);
  int64_t value = 0;
  const auto [end, error] =
      std::from_chars(text.data(), text.data() + text.size(), value, hex ? 16 : 10);
  if (error != std::errc() || end != text.data() + text.size()) return std::nullopt;
  return value;
}

std::optional<json::value> ReadNumber(const std::string& text) {
  if (const auto whole = ReadWhole(text)) return json::value(*whole);
  double value = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
  if (error != std::errc() || end != text.data() + text.size() || !std::isfinite(value))
    return std::nullopt;
  return json::value(value);
}

}  // namespace

bool ParseOnOff(const std::string& text) {
  if (const auto state = FindOnOff(text)) return *state;
  throw Failure(kUsage, "\"" + text + "\" is neither on nor off");
}

json::value ParseValue(const std::string& text) {
  if (const auto state = FindOnOff(text)) return *state;
  if (auto number = ReadNumber(text)) return *std::move(number);
  throw Failure(kUsage, "\"" + text + "\" is no value: write on, off or a number");
}

std::pair<std::string, json::value> ParseSetting(const std::string& text) {
  const size_t sign = text.find('=');
  if (sign == std::string::npos || sign == 0)
    throw Failure(kUsage, "\"" + text + "\" is no setting: write KEY=VALUE");
  const std::string value = text.substr(sign + 1);
  if (value.find(',') == std::string::npos) return {text.substr(0, sign), ParseValue(value)};
  json::array items;
  for (const std::string& item : Split(value, ',')) items.push_back(ParseValue(item));
  return {text.substr(0, sign), std::move(items)};
}

int64_t ParseNumber(const std::string& text, const std::string& what, int64_t least, int64_t most) {
  const auto number = ReadWhole(text);
  if (number && *number >= least && *number <= most) return *number;
  throw Failure(kUsage, "\"" + text + "\" is no " + what + ": write a number from " +
                            std::to_string(least) + " to " + std::to_string(most));
}

std::optional<std::string> ParseHex(const std::vector<std::string>& words) {
  std::string digits;
  for (const std::string& word : words) {
    for (const char letter : word) {
      if (letter == ' ' || letter == ':') continue;
      const char upper =
          letter >= 'a' && letter <= 'f' ? static_cast<char>(letter - 'a' + 'A') : letter;
      if (std::string_view("0123456789ABCDEF").find(upper) == std::string_view::npos)
        return std::nullopt;
      digits += upper;
    }
  }
  if (digits.size() % 2 != 0)
    throw Failure(kUsage, "half a byte is left over: write bytes as 434F");
  return digits;
}

}  // namespace ctl
