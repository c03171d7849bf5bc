#include "api/Times.h"

#include <fmt/format.h>

#include <algorithm>
#include <chrono>

namespace hub::api {

namespace {

using namespace std::chrono;

// What stands at the front of a text is taken off, piece by piece.
class TextReader {
 public:
  explicit TextReader(std::string_view text) : text_(text) {}

  int Digits(size_t count) {
    int value = 0;
    for (; count > 0; --count) {
      if (text_.empty() || text_.front() < '0' || text_.front() > '9') return Fail();
      value = value * 10 + (text_.front() - '0');
      text_.remove_prefix(1);
    }
    return value;
  }

  bool Take(std::string_view any_of) {
    if (text_.empty() || any_of.find(text_.front()) == std::string_view::npos) return false;
    taken_ = text_.front();
    text_.remove_prefix(1);
    return true;
  }

  void Expect(std::string_view any_of) {
    if (!Take(any_of)) Fail();
  }

  // As milliseconds; what is finer is passed over.
  int Fraction() {
    int value = 0;
    int scale = 100;
    size_t count = 0;
    for (; Take("0123456789"); ++count, scale /= 10) value += (taken_ - '0') * scale;
    return count == 0 ? Fail() : value;
  }

  char Taken() const { return taken_; }
  bool IsAtEnd() const { return text_.empty(); }
  bool HasFailed() const { return has_failed_; }

 private:
  int Fail() {
    has_failed_ = true;
    return 0;
  }

  std::string_view text_;
  char taken_ = '\0';
  bool has_failed_ = false;
};

std::optional<int64_t> ParseMilliseconds(std::string_view text) {
  constexpr size_t kMostDigits = 15;
  if (text.empty() || text.size() > kMostDigits) return std::nullopt;
  int64_t value = 0;
  for (const char digit : text) {
    if (digit < '0' || digit > '9') return std::nullopt;
    value = value * 10 + (digit - '0');
  }
  return value;
}

std::optional<sys_days> ReadDate(TextReader& reader) {
  const year y{reader.Digits(4)};
  reader.Expect("-");
  const month m{static_cast<unsigned>(reader.Digits(2))};
  reader.Expect("-");
  const day d{static_cast<unsigned>(reader.Digits(2))};
  const year_month_day date{y, m, d};
  if (reader.HasFailed() || !date.ok()) return std::nullopt;
  return sys_days{date};
}

// A leap second counts as the one before it.
std::optional<milliseconds> ReadTimeOfDay(TextReader& reader) {
  const int hour = reader.Digits(2);
  reader.Expect(":");
  const int minute = reader.Digits(2);
  reader.Expect(":");
  const int second = reader.Digits(2);
  const int fraction = reader.Take(".") ? reader.Fraction() : 0;
  if (reader.HasFailed() || hour > 23 || minute > 59 || second > 60) return std::nullopt;
  return hours{hour} + minutes{minute} + seconds{std::min(second, 59)} + milliseconds{fraction};
}

std::optional<minutes> ReadOffset(TextReader& reader) {
  reader.Expect("Zz+-");
  const char sign = reader.Taken();
  if (sign != '+' && sign != '-') return minutes{0};
  const int hour = reader.Digits(2);
  reader.Expect(":");
  const int minute = reader.Digits(2);
  if (hour > 23 || minute > 59) return std::nullopt;
  const minutes offset = hours{hour} + minutes{minute};
  return sign == '-' ? -offset : offset;
}

std::optional<int64_t> ParseDateTime(std::string_view text) {
  TextReader reader(text);
  const auto date = ReadDate(reader);
  if (!date) return std::nullopt;
  reader.Expect("Tt ");
  const auto time = ReadTimeOfDay(reader);
  const auto offset = ReadOffset(reader);
  if (!time || !offset || reader.HasFailed() || !reader.IsAtEnd()) return std::nullopt;
  return (duration_cast<milliseconds>(date->time_since_epoch()) + *time - *offset).count();
}

}  // namespace

std::string TimeText(model::Time time) {
  const auto rounded = floor<milliseconds>(time);
  const auto today = floor<days>(rounded);
  const year_month_day date{today};
  const hh_mm_ss clock{rounded - today};
  return fmt::format("{:04}-{:02}-{:02}T{:02}:{:02}:{:02}.{:03}Z", static_cast<int>(date.year()),
                     static_cast<unsigned>(date.month()), static_cast<unsigned>(date.day()),
                     clock.hours().count(), clock.minutes().count(), clock.seconds().count(),
                     clock.subseconds().count());
}

int64_t Milliseconds(model::Time time) {
  return floor<milliseconds>(time.time_since_epoch()).count();
}

model::Time TimeOf(int64_t milliseconds_since_1970) {
  return model::Time(milliseconds(milliseconds_since_1970));
}

std::optional<int64_t> ParseTime(std::string_view text) {
  auto time = ParseMilliseconds(text);
  if (!time) time = ParseDateTime(text);
  if (!time || *time < 0 || *time > kLastTime) return std::nullopt;
  return time;
}

}  // namespace hub::api
