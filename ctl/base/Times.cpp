#include "base/Times.h"

#include <array>
#include <charconv>
#include <cmath>
#include <cstdio>
#include <ctime>

namespace ctl {

namespace {

using std::chrono::milliseconds;

struct Unit {
  std::string_view name;
  double milliseconds;
};
constexpr Unit kUnits[] = {
    {"ms", 1}, {"s", 1000}, {"m", 60'000}, {"h", 3'600'000}, {"d", 86'400'000}};

constexpr double kLongest = 1e15;  // milliseconds; far from the end of what fits

// The rest of `text` behind a date and time in this format.
std::optional<std::pair<std::tm, std::string_view>> ReadFormat(const std::string& text,
                                                               const char* format) {
  std::tm fields{};
  const char* rest = strptime(text.c_str(), format, &fields);
  if (rest == nullptr) return std::nullopt;
  return std::pair(fields, std::string_view(rest));
}

// ".123": milliseconds; taken off `text`.
milliseconds TakeFraction(std::string_view& text) {
  if (!text.starts_with('.')) return {};
  text.remove_prefix(1);
  int value = 0;
  int scale = 100;
  while (!text.empty() && text[0] >= '0' && text[0] <= '9') {
    value += (text[0] - '0') * scale;
    scale /= 10;
    text.remove_prefix(1);
  }
  return milliseconds(value);
}

// "Z", "+02:00": how far ahead of UTC.
std::optional<std::chrono::minutes> ReadZone(std::string_view text) {
  if (text == "Z" || text == "z") return std::chrono::minutes(0);
  if (text.size() != 6 || (text[0] != '+' && text[0] != '-') || text[3] != ':') return std::nullopt;
  int hours = 0;
  int minutes = 0;
  std::from_chars(text.data() + 1, text.data() + 3, hours);
  std::from_chars(text.data() + 4, text.data() + 6, minutes);
  const std::chrono::minutes ahead(hours * 60 + minutes);
  return text[0] == '-' ? -ahead : ahead;
}

Moment FromSeconds(std::time_t seconds) { return Moment(std::chrono::seconds(seconds)); }

std::string Format(const char* format, Moment moment, bool local) {
  const auto seconds = std::chrono::floor<std::chrono::seconds>(moment);
  const std::time_t time = seconds.time_since_epoch().count();
  std::tm fields{};
  if (local) {
    localtime_r(&time, &fields);
  } else {
    gmtime_r(&time, &fields);
  }
  std::array<char, 64> text{};
  return {text.data(), std::strftime(text.data(), text.size(), format, &fields)};
}

std::string Fraction(Moment moment) {
  const auto part = moment - std::chrono::floor<std::chrono::seconds>(moment);
  std::array<char, 16> text{};
  std::snprintf(text.data(), text.size(), ".%03d", static_cast<int>(part.count()));
  return text.data();
}

}  // namespace

std::optional<milliseconds> ParseDuration(std::string_view text) {
  double value = 0;
  const auto [rest, error] =
      std::from_chars(text.data(), text.data() + text.size(), value, std::chars_format::fixed);
  if (error != std::errc() || value < 0) return std::nullopt;
  text.remove_prefix(static_cast<size_t>(rest - text.data()));
  for (const Unit& unit : kUnits) {
    if (text != unit.name) continue;
    const double exact = value * unit.milliseconds;
    if (exact > kLongest || std::abs(exact - std::round(exact)) > 1e-6) return std::nullopt;
    return milliseconds(std::llround(exact));
  }
  return std::nullopt;
}

std::optional<Moment> ParseRfc3339(const std::string& text) {
  auto read = ReadFormat(text, "%Y-%m-%dT%H:%M:%S");
  if (!read) return std::nullopt;
  const milliseconds fraction = TakeFraction(read->second);
  const auto ahead = ReadZone(read->second);
  if (!ahead) return std::nullopt;
  return FromSeconds(timegm(&read->first)) + fraction - *ahead;
}

std::optional<Moment> ParseMoment(const std::string& text, Moment now) {
  if (const auto ago = ParseDuration(text)) return now - *ago;
  if (const auto moment = ParseRfc3339(text)) return moment;
  for (const char* format : {"%Y-%m-%d %H:%M:%S", "%Y-%m-%d %H:%M", "%Y-%m-%d"}) {
    auto read = ReadFormat(text, format);
    if (!read || !read->second.empty()) continue;
    read->first.tm_isdst = -1;
    return FromSeconds(std::mktime(&read->first));
  }
  return std::nullopt;
}

std::string FormatUtc(Moment moment) {
  return Format("%Y-%m-%dT%H:%M:%S", moment, false) + Fraction(moment) + "Z";
}

std::string FormatLocal(Moment moment) { return Format("%Y-%m-%d %H:%M:%S", moment, true); }

std::string FormatClock(Moment moment) {
  return Format("%H:%M:%S", moment, true) + Fraction(moment);
}

}  // namespace ctl
