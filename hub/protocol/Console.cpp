#include "protocol/Console.h"

#include <utility>

#include "protocol/Greeting.h"

namespace hub::protocol {

namespace {

constexpr std::string_view kPrompt = ">";
constexpr std::string_view kIllegal = "COE:Illegal command -> ";
constexpr std::string_view kAnyIllegal = "COE:";

// No answer has more lines; what comes beyond is not kept.
constexpr size_t kMostLines = 1000;

}  // namespace

void Console::Take(std::string line) {
  if (line == kPrompt) return TakePrompt();
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
      if (answer_.size() < kMostLines) answer_.push_back(std::move(line));
      return;
  }
}

void Console::TakePrompt() {
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
      return sinks_.answer(std::exchange(answer_, {}));
  }
}

}  // namespace hub::protocol
