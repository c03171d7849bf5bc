// The table of actions, and how their arguments are drawn.
#include "Stateful.h"

namespace {

// A command to an output card, and where its value stands in the data of its frame.
std::string OneCommand(Random& random) {
  const std::string value = Hex(0x20 + Below(random, 0x5F));
  switch (Below(random, 6)) {
    case 0:
      return "a0b" + std::to_string(Below(random, 6)) + "d" + value;
    case 1:
      return "a4b" + std::to_string(Below(random, 4)) + "d" + value;
    case 2:
      return "aElPAp0000t" + std::string(1, static_cast<char>('A' + Below(random, 26)));
    case 3:
      return "a8sHS" + value;
    default:
      return "a5b" + std::to_string(Below(random, 2)) + "d" + value;
  }
}

std::string Commands(Random& random) {
  std::string commands = OneCommand(random);
  for (std::size_t more = Below(random, 4) == 0 ? Below(random, 10) : 0; more > 0; --more) {
    commands += " " + OneCommand(random);
  }
  return commands;
}

std::string Nonsense(Random& random) {
  return OneOf(random, std::array{"nonsense", "aElXX", "a5lCL", "b5b0d00", "a8sXX", "EXIT "});
}

std::string Saying(Random& random) {
  return OneOf(random, std::array{"DRVVER", "HELP", "IOEXAMPLES", "POLLSTATE", "DISCOVER", "VALAMI",
                                  "", "SPEED=0", "GETLASTINPST:0=0"});
}

std::string Times(Random& random) { return std::to_string(1 + Below(random, 20)); }

std::string Value(Random& random) { return Hex(Below(random, 256)); }

std::string Percent(Random& random) {
  return OneOf(random, std::array{"1", "50", "80", "100", "100", "100"});
}

std::string Polling(Random& random) {
  return OneOf(random, std::array{"DISABLEPOLL", "ENABLEPOLL", "ENABLEPOLL", "POLLOFF:2",
                                  "POLLON:2", "POLLOFF:7", "POLLON:7", "POLLOFF:A", "POLLON:A"});
}

std::string InputAndValue(Random& random) {
  return OneOf(random, std::array{"2 0 ", "7 0 ", "7 1 ", "A 0 "}) + Hex(Below(random, 255));
}

std::string PullOrPlugCard(Random& random) {
  return OneOf(random, std::array{"0", "2", "4", "5", "7", "A", "C", "E"}) +
         OneOf(random, std::array{" pull", " plug", " plug"});
}

std::string PullOrPlug(Random& random) { return OneOf(random, std::array{"pull", "plug", "plug"}); }

std::string Fault(Random& random) {
  return OneOf(random,
               std::array{"mute 100ms", "drop next 1", "drop next 3", "late 5ms", "late 60ms",
                          "late 0ms", "split 3", "split 1", "wrong-length", "wrong-address",
                          "wrong-address 3", "noise 1%", "noise 0%", "faults off", "faults off"});
}

std::string Garbage(Random& random) { return std::to_string(1 + Below(random, 60)); }

}  // namespace

const std::vector<Stateful::Action>& Stateful::Actions() {
  static const std::vector<Action> actions{
      // clang-format off
      {"io connect",          60, Nothing,        &Stateful::IoConnect},
      {"io reset",            15, Nothing,        &Stateful::IoReset},
      {"io close",            15, Nothing,        &Stateful::IoClose},
      {"io exit",              5, Nothing,        &Stateful::IoExit},
      {"io write",           250, Commands,       &Stateful::IoWrite},
      {"io throw",             5, OneCommand,     &Stateful::IoThrow},
      {"io nonsense",         30, Nonsense,       &Stateful::IoNonsense},
      {"cae connect",         60, Nothing,        &Stateful::CaeConnect},
      {"cae reset",           15, Nothing,        &Stateful::CaeReset},
      {"cae exit",             5, Nothing,        &Stateful::CaeExit},
      {"cae say",            100, Saying,         &Stateful::CaeSay},
      {"cae stop-reading",     5, Times,          &Stateful::CaeStopReading},
      {"cae ask",              5, Value,          &Stateful::CaeAsk},
      {"cae speed",           10, Percent,        &Stateful::CaeSpeed},
      {"cae polling",         40, Polling,        &Stateful::CaePolling},
      {"cae force-discover",   5, Nothing,        &Stateful::CaeForceDiscover},
      {"mon connect",         30, Nothing,        &Stateful::MonConnect},
      {"mon reset",           20, Nothing,        &Stateful::MonReset},
      {"bus set",            250, InputAndValue,  &Stateful::BusSet},
      {"bus card",            10, PullOrPlugCard, &Stateful::BusCard},
      {"bus cable",           12, PullOrPlug,     &Stateful::BusCable},
      {"bus fault",           25, Fault,          &Stateful::BusFault},
      {"bus garbage",          5, Garbage,        &Stateful::BusGarbage},
      {"check",                2, Nothing,        &Stateful::CheckAll},
      // clang-format on
  };
  return actions;
}
