// The command line, read by the table of commands.
#pragma once

#include <optional>

#include "client/Target.h"
#include "commands/Command.h"

namespace ctl {

struct Invocation {
  Target target;
  bool json = false;
  const Command* command = nullptr;
  Words words;
};

// Nothing where there is nothing to do: help was asked for, or something is wrong, and was said.
std::optional<Invocation> ReadCommandLine(int argc, char** argv, int& status);

}  // namespace ctl
