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

// The answer to a line, or what the answer waits for.
struct Reply {
  Problem problem{};
  std::vector<std::string> lines{};  // before the "ok"
  bool mark = false;                 // forget the frames so far
  bool quit = false;
  FramePattern awaited{};  // empty: answer at once
  Clock::duration timeout{};
};

// Runs one line. An empty line does nothing.
Reply RunControlLine(VirtualBus& bus, std::string_view line);

// Runs the lines of the command line, which has nowhere to show their answers; stops at the first
// that fails.
Problem RunControlLines(VirtualBus& bus, std::span<const std::string> lines);

}  // namespace virtualbus
