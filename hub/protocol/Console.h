// The dialogue on the daemon's console port (CAE): lines in, whole answers out.
//
//   greeting ──> ready ──Ask()──> asked ──lines, ">"──> ready
//
// Every answer ends with a prompt. A "COE:" line says that a command of the IO port was illegal;
// it brings a prompt of its own, at any moment, and belongs to no answer. Lines of an earlier
// client may come before the greeting: they are nobody's.
#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

namespace hub::protocol {

using Lines = std::vector<std::string>;

struct Answer {
  Lines lines;       // without the prompt
  std::string wire;  // as the daemon wrote it, the prompt and every CR included
};

// Whether the line can go out: it fits into one read of the daemon, is one line there, and does
// not end the session.
bool IsConsoleLine(std::string_view line);

class Console {
 public:
  struct Sinks {
    std::function<void()> ready;  // greeted, the first prompt has come
    std::function<void(Answer answer)> answer;
    std::function<void(std::string command)> illegal;  // an IO command that was refused
    std::function<void(std::string line)> unexpected;  // nobody has asked for this
  };

  explicit Console(Sinks sinks) : sinks_(std::move(sinks)) {}

  // One line that was received, without its end; a CR at its front marks the beginning of an item.
  void Take(std::string line);

  // A line was sent. Only one at a time: IsReady() before.
  void Ask() { state_ = State::kAsked; }

  bool IsReady() const { return state_ == State::kReady; }

 private:
  enum class State { kUngreeted, kGreeted, kReady, kAsked };

  void TakePrompt(bool begins_item);
  void AddWire(std::string_view line, bool begins_item);

  Sinks sinks_;
  State state_ = State::kUngreeted;
  bool prompt_of_illegal_ = false;  // the next prompt is that of a "COE:" line
  Answer answer_;
};

}  // namespace hub::protocol
