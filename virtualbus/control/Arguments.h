// What stands behind the words of a control line, as types. A handler names its arguments with
// them: Press(bus, Address, Byte) is run by "press 3 06".
// For each type there is a Read, which takes words from the front of those that are left.
#pragma once

#include <chrono>
#include <limits>
#include <optional>
#include <span>
#include <string>

#include "base/Problem.h"
#include "base/Text.h"
#include "cards/CardKinds.h"
#include "journal/FrameHistory.h"

namespace virtualbus {

using Words = std::span<const std::string>;

template <typename Value>
struct Argument {
  Value value{};
  operator const Value&() const { return value; }
};

struct Address : Argument<uint8_t> {};
struct Byte : Argument<uint8_t> {};
template <long least, long most>
struct Count : Argument<long> {};
struct Duration : Argument<std::chrono::milliseconds> {};
struct Chance : Argument<double> {};
struct Kind : Argument<const CardKind*> {};
enum class PlugAction { kPull, kPlug };        // a pull is the last word of its line
struct RestOfLine : Argument<std::string> {};  // all words that are left, a blank between them
struct AwaitedFrame {                          // 10 05 .. within 2s
  FramePattern pattern;
  Duration timeout{std::chrono::seconds(10)};
};

// How many words a type takes.
constexpr size_t kAnyNumber = std::numeric_limits<uint16_t>::max();
struct WordCount {
  size_t least;
  size_t most;
};
template <typename T>
constexpr WordCount kWordCount{1, 1};
template <typename T>
constexpr WordCount kWordCount<std::optional<T>>{0, 1};
template <>
constexpr WordCount kWordCount<Bytes>{1, kAnyNumber};
template <>
constexpr WordCount kWordCount<RestOfLine>{1, kAnyNumber};
template <>
constexpr WordCount kWordCount<AwaitedFrame>{1, kAnyNumber};

// The caller has counted the words.
Problem Read(Words& words, Address& address);
Problem Read(Words& words, Byte& byte);
Problem Read(Words& words, Bytes& bytes);
Problem Read(Words& words, Duration& duration);
Problem Read(Words& words, Chance& chance);
Problem Read(Words& words, Kind& kind);
Problem Read(Words& words, PlugAction& action);
Problem Read(Words& words, RestOfLine& rest);
Problem Read(Words& words, AwaitedFrame& frame);
Problem ReadNumber(Words& words, long least, long most, long& number);

template <long least, long most>
Problem Read(Words& words, Count<least, most>& count) {
  return ReadNumber(words, least, most, count.value);
}

template <typename T>
Problem Read(Words& words, std::optional<T>& argument) {
  return words.empty() ? Problem() : Read(words, argument.emplace());
}

}  // namespace virtualbus
