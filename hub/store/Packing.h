// Values of one channel as bytes: one to three bytes a value, so that flash lasts.
//
// Numbers on the bus are few and small: bits, bytes, units with a few decimals. They are kept as
// whole numbers at the smallest power of ten that holds all of them exactly, each as what it
// differs from the one before. Where no power up to six decimals does, they are kept as they are.
// Pure functions.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace hub::store {

// A value as it came.
struct Sample {
  int64_t time = 0;  // ms since 1970
  double value = 0;
};

// What the values in one step of time come to.
struct Summary {
  uint64_t count = 0;
  double sum = 0;
  double min = 0;
  double max = 0;

  void Add(double value) { Add(Summary{1, value, value, value}); }
  void Add(const Summary& other);
  double Mean() const { return sum / static_cast<double>(count); }
};

// A step by its number in a block: a minute in its hour, an hour in its day.
struct Step {
  uint64_t number = 0;
  Summary summary;
};

// Times are kept from `start`; they may go backwards.
std::string PackSamples(int64_t start, const std::vector<Sample>& samples);
std::string PackSteps(const std::vector<Step>& steps);

// Nothing for bytes that were not packed here.
std::optional<std::vector<Sample>> UnpackSamples(int64_t start, std::string_view bytes);
std::optional<std::vector<Step>> UnpackSteps(std::string_view bytes);

}  // namespace hub::store
