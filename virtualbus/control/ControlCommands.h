// The control language: one row per command, found by its leading words.
#pragma once

#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "base/Loop.h"
#include "base/Problem.h"
#include "bus/VirtualBus.h"
#include "journal/FrameHistory.h"

namespace virtualbus {

// What a command has to say beyond "ok", or what its answer waits for.
struct Reply {
  std::vector<std::string> lines;
  bool mark = false;  // forget the frames so far
  bool quit = false;
  FramePattern awaited;  // empty: answer at once
  Clock::duration patience{};
};

struct ControlCommand {
  using Arguments = std::span<const std::string>;

  std::string_view words;
  std::string_view arguments;  // as a person reads them
  size_t least;                // number of arguments
  size_t most;
  Problem (*run)(VirtualBus& bus, Arguments arguments, Reply& reply);
  std::string_view help;
};

std::span<const ControlCommand> ControlCommands();

// Runs one line. An empty line does nothing.
Problem RunControlLine(VirtualBus& bus, std::string_view line, Reply& reply);

// Runs lines that nobody hears the answers of; stops at the first that fails.
Problem RunControlLines(VirtualBus& bus, std::span<const std::string> lines);

}  // namespace virtualbus
