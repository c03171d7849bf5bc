#include "protocol/Console.h"

#include <utility>

#include "protocol/Greeting.h"
#include "protocol/IoCommand.h"

namespace hub::protocol {

namespace {

constexpr std::string_view kPrompt = ">";
constexpr std::string_view kIllegal = "COE:Illegal command -> ";
constexpr std::string_view kAnyIllegal = "COE:";

// No answer has more lines; what comes beyond is not kept.
constexpr size_t kMostLines = 1000;

constexpr std::string_view kFarewell = "EXIT";

}  // namespace

bool IsConsoleLine(std::string_view line) {
  constexpr std::string_view kLineBreaks("\r\n\0", 3);
  return line.size() + kLineEnd.size() <= kMostBytesUnderWay && line != kFarewell &&
         line.find_first_of(kLineBreaks) == std::string_view::npos;
}

void Console::Take(std::string line) {
  const bool begins_item = line.starts_with('\r');
  if (begins_item) line.erase(0, 1);
  if (line == kPrompt) return TakePrompt(begins_item);
  if (line.starts_with(kAnyIllegal)) {
    prompt_of_illegal_ = true;
    if (state_ == State::kUngreeted) return;
    return sinks_.illegal(line.starts_with(kIllegal) ? line.substr(kIllegal.size()) : line);
  }
  switch (state_) {
    case State::kUngreeted:
      if (line == TextOf(Port::kCae).greeting) {
        prompt_of_illegal_ = false;
        state_ = State::kGreeted;
      }
      return;
    case State::kGreeted:
      return;  // how to get help
    case State::kReady:
      return sinks_.unexpected(std::move(line));
    case State::kAsked:
      if (answer_.lines.size() == kMostLines) return;
      AddWire(line, begins_item);
      answer_.lines.push_back(std::move(line));
      return;
  }
}

void Console::TakePrompt(bool begins_item) {
  if (std::exchange(prompt_of_illegal_, false)) return;
  switch (state_) {
    case State::kUngreeted:
    case State::kReady:
      return;
    case State::kGreeted:
      state_ = State::kReady;
      return sinks_.ready();
    case State::kAsked:
      state_ = State::kReady;
      AddWire(kPrompt, begins_item);
      answer_.wire += '\r';
      return sinks_.answer(std::exchange(answer_, {}));
  }
}

// Each item ends with a CR of its own; the one before the answer is not part of it.
void Console::AddWire(std::string_view line, bool begins_item) {
  if (begins_item && !answer_.wire.empty()) answer_.wire += '\r';
  answer_.wire += line;
  answer_.wire += kLineEnd;
}

}  // namespace hub::protocol
