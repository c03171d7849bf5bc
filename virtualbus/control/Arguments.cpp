#include "control/Arguments.h"

namespace virtualbus {

namespace {

constexpr std::string_view kAnyByte = "..";
constexpr std::string_view kWithin = "within";

Problem IsNo(const std::string& word, const std::string& what) {
  return Problem("\"" + word + "\" is no " + what);
}

// Takes one word, which the caller has parsed.
template <typename Value>
Problem Take(Words& words, const std::optional<Value>& parsed, const std::string& what,
             Value& into) {
  if (!parsed) return IsNo(words.front(), what);
  into = *parsed;
  words = words.subspan(1);
  return {};
}

}  // namespace

Problem Read(Words& words, Address& address) {
  return Take(words, ParseAddress(words.front()), "address (0 to F)", address.value);
}

Problem Read(Words& words, Byte& byte) {
  return Take(words, ParseByte(words.front()), "byte (00 to FF)", byte.value);
}

Problem Read(Words& words, Bytes& bytes) {
  while (!words.empty()) {
    Byte byte;
    if (Problem problem = Read(words, byte)) return problem;
    bytes.push_back(byte);
  }
  return {};
}

Problem Read(Words& words, Duration& duration) {
  return Take(words, ParseDuration(words.front()), "time (such as 40ms or 2s)", duration.value);
}

Problem Read(Words& words, Chance& chance) {
  return Take(words, ParseChance(words.front()), "chance (0% to 100%)", chance.value);
}

Problem Read(Words& words, Kind& kind) {
  kind.value = FindKind(words.front());
  if (kind.value == nullptr) return IsNo(words.front(), "card kind (" + KindWords() + ")");
  words = words.subspan(1);
  return {};
}

Problem Read(Words& words, PlugAction& action) {
  const bool pull = words.front() == "pull" && words.size() == 1;
  if (!pull && words.front() != "plug") return Problem("a card can \"pull\" or \"plug [KIND]\"");
  action = pull ? PlugAction::kPull : PlugAction::kPlug;
  words = words.subspan(1);
  return {};
}

Problem Read(Words& words, RestOfLine& rest) {
  for (const std::string& word : words) {
    if (!rest.value.empty()) rest.value += ' ';
    rest.value += word;
  }
  words = {};
  return {};
}

Problem Read(Words& words, AwaitedFrame& frame) {
  while (!words.empty()) {
    const bool ends_pattern = words.size() == 2 && words.front() == kWithin;
    if (ends_pattern && !frame.pattern.empty()) {
      words = words.subspan(1);
      return Read(words, frame.timeout);
    }
    if (words.front() == kAnyByte) {
      frame.pattern.emplace_back(std::nullopt);
      words = words.subspan(1);
      continue;
    }
    Byte byte;
    if (Problem problem = Read(words, byte)) return problem;
    frame.pattern.emplace_back(byte.value);
  }
  return {};
}

Problem ReadNumber(Words& words, long least, long most, long& number) {
  const std::string what = "number (" + std::to_string(least) + " to " + std::to_string(most) + ")";
  return Take(words, ParseNumber(words.front(), least, most), what, number);
}

}  // namespace virtualbus
