// The table of actions on the hub, and how their arguments are drawn.
#include "HubStateful.h"
#include "kit/Bytes.h"

namespace {

std::string Line(Random& random) { return "5." + std::to_string(Below(random, 16)); }

std::string OneOutput(Random& random) {
  switch (Below(random, 3)) {
    case 0:
      return "0." + std::to_string(Below(random, 6)) + " " + std::to_string(Below(random, 256));
    case 1:
      return "4." + std::to_string(Below(random, 4)) + " " + std::to_string(Below(random, 256));
    default:
      return Line(random) + OneOf(random, std::array{" true", " false"});
  }
}

// One line of each block: a command each.
std::string TwoLines(Random& random) {
  return std::to_string(Below(random, 8)) + " " + std::to_string(8 + Below(random, 8)) +
         OneOf(random, std::array{" true", " false"});
}

std::string LineAndTime(Random& random) {
  return Line(random) + " " + std::to_string(20 + Below(random, 400));
}

std::string Commands(Random& random) {
  std::string commands;
  for (std::size_t more = 1 + Below(random, 4); more > 0; --more) {
    const std::string block = OneOf(random, std::array{"a0b", "a4b", "a5b"});
    const std::size_t blocks = block == "a0b" ? 6 : block == "a4b" ? 4 : 2;
    commands += (commands.empty() ? "" : " ") + block + std::to_string(Below(random, blocks)) +
                "d" + Hex(static_cast<int>(Below(random, 256)));
  }
  return commands;
}

std::string OutputCard(Random& random) { return OneOf(random, std::array{"0", "4", "5"}); }

std::string PullOrPlug(Random& random) { return OneOf(random, std::array{"pull", "plug", "plug"}); }

std::string Milliseconds(Random& random) { return std::to_string(Below(random, 400)); }

}  // namespace

const std::vector<HubStateful::Action>& HubStateful::Actions() {
  static const std::vector<Action> actions{
      // clang-format off
      {"set",          200, OneOutput,    &HubStateful::Set},
      {"lamps",         60, TwoLines,     &HubStateful::SetLamps},
      {"pulse",         30, LineAndTime,  &HubStateful::Pulse},
      {"text",          60, Commands,     &HubStateful::WriteText},
      {"wait",          40, Milliseconds, &HubStateful::Wait},
      {"cable",         30, PullOrPlug,   &HubStateful::BusCable},
      {"daemon kill",   12, Nothing,      &HubStateful::KillDaemon},
      {"daemon start",  20, Nothing,      &HubStateful::StartDaemonAgain},
      {"hub kill",      12, Nothing,      &HubStateful::KillHub},
      {"hub stop",      12, Nothing,      &HubStateful::StopHub},
      {"discover",       6, Nothing,      &HubStateful::Discover},
      {"reboot",         6, OutputCard,   &HubStateful::RebootCard},
      {"check",         12, Nothing,      &HubStateful::CheckAll},
      // clang-format on
  };
  return actions;
}
