#include "store/Packing.h"

#include <algorithm>
#include <bit>
#include <cmath>

namespace hub::store {

namespace {

constexpr uint8_t kMostDecimals = 6;
constexpr uint8_t kPlain = 255;        // instead of the decimals: eight bytes a number
constexpr double kMostExact = 0x1p53;  // a double holds every whole number up to it

constexpr double kPowers[kMostDecimals + 1] = {1, 1e1, 1e2, 1e3, 1e4, 1e5, 1e6};

class Writer {
 public:
  void Byte(uint8_t byte) { bytes_ += static_cast<char>(byte); }
  void Unsigned(uint64_t number) {
    for (; number >= 0x80; number >>= 7) Byte(static_cast<uint8_t>(number | 0x80));
    Byte(static_cast<uint8_t>(number));
  }
  // Small ones of either sign are short.
  void Signed(int64_t number) {
    Unsigned(static_cast<uint64_t>(number) << 1 ^ static_cast<uint64_t>(number >> 63));
  }
  void Double(double number) {
    auto bits = std::bit_cast<uint64_t>(number);
    for (int i = 0; i < 8; ++i, bits >>= 8) Byte(static_cast<uint8_t>(bits));
  }
  std::string Take() { return std::move(bytes_); }

 private:
  std::string bytes_;
};

// After the end, or after a number that is none, everything reads as 0 and Failed() says so.
class Reader {
 public:
  explicit Reader(std::string_view bytes) : rest_(bytes) {}

  bool AtEnd() const { return rest_.empty(); }
  bool Failed() const { return failed_; }

  uint8_t Byte() {
    if (rest_.empty()) {
      failed_ = true;
      return 0;
    }
    const auto byte = static_cast<uint8_t>(rest_.front());
    rest_.remove_prefix(1);
    return byte;
  }
  uint64_t Unsigned() {
    uint64_t number = 0;
    for (unsigned shift = 0; shift < 64; shift += 7) {
      const uint8_t byte = Byte();
      number |= static_cast<uint64_t>(byte & 0x7F) << shift;
      if (byte < 0x80) return number;
    }
    failed_ = true;
    return 0;
  }
  // Unsigned, so that adding what a broken file holds can only wrap.
  uint64_t Signed() {
    const uint64_t number = Unsigned();
    return number >> 1 ^ (~(number & 1) + 1);
  }
  double Double() {
    uint64_t bits = 0;
    for (unsigned i = 0; i < 8; ++i) bits |= static_cast<uint64_t>(Byte()) << (8 * i);
    return std::bit_cast<double>(bits);
  }

 private:
  std::string_view rest_;
  bool failed_ = false;
};

bool IsWhole(double value, uint8_t decimals) {
  const double scaled = std::round(value * kPowers[decimals]);
  return std::abs(scaled) < kMostExact && scaled / kPowers[decimals] == value &&
         !(value == 0 && std::signbit(value));
}

int64_t ToWhole(double value, uint8_t decimals) {
  return static_cast<int64_t>(std::round(value * kPowers[decimals]));
}

double FromWhole(uint64_t whole, uint8_t decimals) {
  return static_cast<double>(static_cast<int64_t>(whole)) / kPowers[decimals];
}

template <typename Items, typename Fits>
uint8_t FindDecimals(const Items& items, Fits fits) {
  for (uint8_t decimals = 0; decimals <= kMostDecimals; ++decimals)
    if (std::ranges::all_of(items, [&](const auto& item) { return fits(item, decimals); }))
      return decimals;
  return kPlain;
}

bool IsFormat(uint8_t decimals) { return decimals <= kMostDecimals || decimals == kPlain; }

// A sum of decimals is off by a rounding; it is put right when it is made whole.
bool IsWholeSummary(const Summary& summary, uint8_t decimals) {
  const double most = std::max(std::abs(summary.min), std::abs(summary.max)) * kPowers[decimals];
  return IsWhole(summary.min, decimals) && IsWhole(summary.max, decimals) &&
         most * static_cast<double>(summary.count) < kMostExact / 2;
}

void WriteSummary(Writer& writer, const Summary& summary, uint8_t decimals) {
  writer.Unsigned(summary.count);
  if (decimals == kPlain) {
    for (const double number : {summary.min, summary.max, summary.sum}) writer.Double(number);
    return;
  }
  const int64_t min = ToWhole(summary.min, decimals);
  writer.Signed(min);
  writer.Signed(ToWhole(summary.max, decimals) - min);
  writer.Signed(ToWhole(summary.sum, decimals) - min * static_cast<int64_t>(summary.count));
}

Summary ReadSummary(Reader& reader, uint8_t decimals) {
  Summary summary;
  summary.count = reader.Unsigned();
  if (decimals == kPlain) {
    for (double* number : {&summary.min, &summary.max, &summary.sum}) *number = reader.Double();
    return summary;
  }
  const uint64_t min = reader.Signed();
  const uint64_t max = reader.Signed() + min;
  const uint64_t sum = reader.Signed() + min * summary.count;
  summary.min = FromWhole(min, decimals);
  summary.max = FromWhole(max, decimals);
  summary.sum = FromWhole(sum, decimals);
  return summary;
}

}  // namespace

void Summary::Add(const Summary& other) {
  if (count == 0) {
    *this = other;
    return;
  }
  count += other.count;
  sum += other.sum;
  min = std::min(min, other.min);
  max = std::max(max, other.max);
}

std::string PackSamples(int64_t start, const std::vector<Sample>& samples) {
  const uint8_t decimals = FindDecimals(
      samples, [](const Sample& sample, uint8_t places) { return IsWhole(sample.value, places); });
  Writer writer;
  writer.Byte(decimals);
  int64_t time = start;
  int64_t value = 0;
  for (const Sample& sample : samples) {
    writer.Signed(sample.time - time);
    time = sample.time;
    if (decimals == kPlain) {
      writer.Double(sample.value);
    } else {
      const int64_t whole = ToWhole(sample.value, decimals);
      writer.Signed(whole - value);
      value = whole;
    }
  }
  return writer.Take();
}

std::optional<std::vector<Sample>> UnpackSamples(int64_t start, std::string_view bytes) {
  Reader reader(bytes);
  const uint8_t decimals = reader.Byte();
  if (!IsFormat(decimals)) return std::nullopt;
  std::vector<Sample> samples;
  samples.reserve(bytes.size() / 2);
  auto time = static_cast<uint64_t>(start);
  uint64_t value = 0;
  while (!reader.AtEnd()) {
    Sample sample;
    time += reader.Signed();
    sample.time = static_cast<int64_t>(time);
    if (decimals == kPlain) {
      sample.value = reader.Double();
    } else {
      value += reader.Signed();
      sample.value = FromWhole(value, decimals);
    }
    samples.push_back(sample);
  }
  if (reader.Failed()) return std::nullopt;
  return samples;
}

std::string PackSteps(const std::vector<Step>& steps) {
  const uint8_t decimals = FindDecimals(
      steps, [](const Step& step, uint8_t places) { return IsWholeSummary(step.summary, places); });
  Writer writer;
  writer.Byte(decimals);
  for (const Step& step : steps) {
    writer.Unsigned(step.number);
    WriteSummary(writer, step.summary, decimals);
  }
  return writer.Take();
}

std::optional<std::vector<Step>> UnpackSteps(std::string_view bytes) {
  Reader reader(bytes);
  const uint8_t decimals = reader.Byte();
  if (!IsFormat(decimals)) return std::nullopt;
  std::vector<Step> steps;
  while (!reader.AtEnd()) {
    Step step;
    step.number = reader.Unsigned();
    step.summary = ReadSummary(reader, decimals);
    if (step.summary.count == 0) return std::nullopt;
    steps.push_back(step);
  }
  if (reader.Failed()) return std::nullopt;
  return steps;
}

}  // namespace hub::store
