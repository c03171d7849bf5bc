#include "control/ControlCommands.h"

#include <algorithm>
#include <array>
#include <limits>

namespace virtualbus {

namespace {

using Arguments = ControlCommand::Arguments;

constexpr long kMostFrames = 1'000'000;
constexpr long kMostSteps = 999;
constexpr long kMostGarbage = 4096;
constexpr long kMostPieces = 255;
constexpr std::chrono::seconds kPatience{10};

// Reading one argument either fills in a value or fails with a problem that names it.
template <typename Value>
Problem Read(std::string_view what, const std::string& text, std::optional<Value> parsed,
             Value& into) {
  if (!parsed) return Problem("\"" + text + "\" is no " + std::string(what));
  into = *parsed;
  return {};
}

Problem ReadAddress(const std::string& text, uint8_t& address) {
  return Read("address (0 to F)", text, ParseAddress(text), address);
}

Problem ReadByte(const std::string& text, uint8_t& byte) {
  return Read("byte (00 to FF)", text, ParseByte(text), byte);
}

Problem ReadTime(const std::string& text, std::chrono::milliseconds& time) {
  return Read("time (such as 40ms or 2s)", text, ParseDuration(text), time);
}

Problem ReadCount(const std::string& text, long least, long most, long& count) {
  const std::string what = "number (" + std::to_string(least) + " to " + std::to_string(most) + ")";
  return Read(what, text, ParseNumber(text, least, most), count);
}

// The first problem of a list; each is looked at only if those before it are none.
template <typename... Steps>
Problem First(Steps... steps) {
  Problem problem;
  static_cast<void>(((problem = steps(), !problem) && ...));
  return problem;
}

Problem Set(VirtualBus& bus, Arguments arguments, Reply&) {
  uint8_t address = 0;
  uint8_t block = 0;
  Bytes values(arguments.size() - 2);
  Problem problem = First([&] { return ReadAddress(arguments[0], address); },
                          [&] { return ReadByte(arguments[1], block); });
  for (size_t i = 0; i < values.size() && !problem; ++i) {
    problem = ReadByte(arguments[i + 2], values[i]);
  }
  return problem ? problem : bus.card_operator.Set(address, block, values);
}

Problem Ramp(VirtualBus& bus, Arguments arguments, Reply&) {
  uint8_t address = 0;
  uint8_t block = 0;
  uint8_t from = 0;
  uint8_t to = 0;
  std::chrono::milliseconds time{};
  return First(
      [&] { return ReadAddress(arguments[0], address); },
      [&] { return ReadByte(arguments[1], block); }, [&] { return ReadByte(arguments[2], from); },
      [&] { return ReadByte(arguments[3], to); }, [&] { return ReadTime(arguments[4], time); },
      [&] { return bus.card_operator.Ramp(address, block, from, to, time); });
}

Problem Press(VirtualBus& bus, Arguments arguments, Reply&) {
  uint8_t address = 0;
  uint8_t code = 0;
  return First([&] { return ReadAddress(arguments[0], address); },
               [&] { return ReadByte(arguments[1], code); },
               [&] { return bus.card_operator.Press(address, code); });
}

Problem Release(VirtualBus& bus, Arguments arguments, Reply&) {
  uint8_t address = 0;
  uint8_t code = 0;
  const bool all = arguments.size() == 1;
  return First(
      [&] { return ReadAddress(arguments[0], address); },
      [&] { return all ? Problem{} : ReadByte(arguments[1], code); },
      [&] { return bus.card_operator.Release(address, all ? std::nullopt : std::optional(code)); });
}

Problem Turn(VirtualBus& bus, Arguments arguments, Reply&) {
  uint8_t address = 0;
  long steps = 0;
  return First([&] { return ReadAddress(arguments[0], address); },
               [&] { return ReadCount(arguments[1], -kMostSteps, kMostSteps, steps); },
               [&] { return bus.card_operator.Turn(address, static_cast<int>(steps)); });
}

Problem Show(VirtualBus& bus, Arguments arguments, Reply& reply) {
  uint8_t address = 0;
  if (Problem problem = ReadAddress(arguments[0], address)) return problem;
  const BusAdapter::Slot& slot = bus.adapter.At(address);
  if (slot.kind == nullptr) return bus.adapter.WhyAbsent(address);
  const std::string state = slot.pulled ? " (pulled)" : "";
  reply.lines.push_back("card " + HexDigit(address) + " " + std::string(slot.kind->word) + state);
  for (const std::string& line : slot.card->Show()) reply.lines.push_back("  " + line);
  return {};
}

Problem CardPlug(VirtualBus& bus, Arguments arguments, Reply&) {
  const CardKind* const kind = arguments.size() == 3 ? FindKind(arguments[2]) : nullptr;
  if (arguments.size() == 3 && kind == nullptr) {
    return Problem("\"" + arguments[2] + "\" is no card kind (" + KindWords() + ")");
  }
  uint8_t address = 0;
  return First([&] { return ReadAddress(arguments[0], address); },
               [&] { return bus.card_operator.PlugCard(address, kind); });
}

Problem PullOrPlugCard(VirtualBus& bus, Arguments arguments, Reply& reply) {
  if (arguments[1] == "plug") return CardPlug(bus, arguments, reply);
  if (arguments[1] != "pull" || arguments.size() != 2)
    return Problem("a card can \"pull\" or \"plug [KIND]\"");
  uint8_t address = 0;
  return First([&] { return ReadAddress(arguments[0], address); },
               [&] { return bus.card_operator.PullCard(address); });
}

Problem PullCable(VirtualBus& bus, Arguments, Reply&) { return bus.cable.Pull(); }

Problem PlugCable(VirtualBus& bus, Arguments, Reply&) { return bus.cable.Plug(); }

Problem WaitFrame(VirtualBus&, Arguments arguments, Reply& reply) {
  std::chrono::milliseconds patience = kPatience;
  if (arguments.size() > 2 && arguments[arguments.size() - 2] == "within") {
    if (Problem problem = ReadTime(arguments.back(), patience)) return problem;
    arguments = arguments.first(arguments.size() - 2);
  }
  for (const std::string& text : arguments) {
    uint8_t byte = 0;
    if (text == "..") {
      reply.awaited.push_back(std::nullopt);
    } else if (Problem problem = ReadByte(text, byte)) {
      reply.awaited.clear();
      return problem;
    } else {
      reply.awaited.push_back(byte);
    }
  }
  reply.patience = patience;
  return {};
}

Problem Mark(VirtualBus&, Arguments, Reply& reply) {
  reply.mark = true;
  return {};
}

Problem Status(VirtualBus& bus, Arguments, Reply& reply) {
  const Exchange::Counts& counts = bus.exchange.Totals();
  const std::string cable = bus.cable.IsPlugged() ? "plugged" : "pulled";
  reply.lines = {
      "  device " + bus.wire.DevicePath(),         "  cable " + cable,
      "  frames " + std::to_string(counts.frames), "  replies " + std::to_string(counts.replies),
      "  lost " + std::to_string(counts.lost),     "  shaped " + std::to_string(counts.shaped),
  };
  return {};
}

Problem Mute(VirtualBus& bus, Arguments arguments, Reply&) {
  std::chrono::milliseconds time{};
  Problem problem = ReadTime(arguments[0], time);
  if (!problem) bus.faults.Mute(time);
  return problem;
}

Problem Late(VirtualBus& bus, Arguments arguments, Reply&) {
  std::chrono::milliseconds delay{};
  Problem problem = ReadTime(arguments[0], delay);
  if (!problem) bus.faults.Late(delay);
  return problem;
}

Problem DropNext(VirtualBus& bus, Arguments arguments, Reply&) {
  long count = 0;
  Problem problem = ReadCount(arguments[0], 0, kMostFrames, count);
  if (!problem) bus.faults.DropNext(count);
  return problem;
}

Problem WrongLength(VirtualBus& bus, Arguments arguments, Reply&) {
  long count = 1;
  Problem problem;
  if (!arguments.empty()) problem = ReadCount(arguments[0], 0, kMostFrames, count);
  if (!problem) bus.faults.WrongLength(count);
  return problem;
}

Problem WrongAddress(VirtualBus& bus, Arguments arguments, Reply&) {
  long count = 1;
  Problem problem;
  if (!arguments.empty()) problem = ReadCount(arguments[0], 0, kMostFrames, count);
  if (!problem) bus.faults.WrongAddress(count);
  return problem;
}

Problem Garbage(VirtualBus& bus, Arguments arguments, Reply&) {
  long count = 0;
  Problem problem = ReadCount(arguments[0], 1, kMostGarbage, count);
  if (!problem) bus.exchange.SendGarbage(static_cast<size_t>(count));
  return problem;
}

Problem Split(VirtualBus& bus, Arguments arguments, Reply&) {
  long pieces = 0;
  Problem problem = ReadCount(arguments[0], 1, kMostPieces, pieces);
  if (!problem) bus.faults.Split(static_cast<size_t>(pieces));
  return problem;
}

Problem Noise(VirtualBus& bus, Arguments arguments, Reply&) {
  double chance = 0.0;
  Problem problem = Read("chance (0% to 100%)", arguments[0], ParseChance(arguments[0]), chance);
  if (!problem) bus.faults.Noise(chance);
  return problem;
}

Problem FaultsOff(VirtualBus& bus, Arguments, Reply&) {
  bus.faults.Off();
  return {};
}

Problem Help(VirtualBus&, Arguments, Reply& reply) {
  for (const ControlCommand& command : ControlCommands()) {
    std::string line = "  " + std::string(command.words) + ' ' + std::string(command.arguments);
    line.resize(std::max<size_t>(line.size() + 2, 38), ' ');
    reply.lines.push_back(line + std::string(command.help));
  }
  return {};
}

Problem Quit(VirtualBus&, Arguments, Reply& reply) {
  reply.quit = true;
  return {};
}

constexpr size_t kAny = std::numeric_limits<size_t>::max();

constexpr std::array<ControlCommand, 23> kCommands{{
    {"set", "ADDR BLOCK BYTE...", 3, kAny, Set, "give input blocks, from BLOCK on, these values"},
    {"ramp", "ADDR BLOCK FROM TO TIME", 5, 5, Ramp,
     "move an input block evenly from one value to another"},
    {"press", "ADDR CODE", 2, 2, Press,
     "press a key of a key card, or line 00 to 0F of an input card"},
    {"release", "ADDR [CODE]", 1, 2, Release, "let it go; without a code, all that is pressed"},
    {"turn", "ADDR STEPS", 2, 2, Turn, "turn the encoder, to the left below 0"},
    {"show", "ADDR", 1, 1, Show, "tell what the card holds"},
    {"card", "ADDR pull|plug [KIND]", 2, 3, PullOrPlugCard,
     "pull a card, plug it again, or plug a new one"},
    {"cable pull", "", 0, 0, PullCable, "take away the device"},
    {"cable plug", "", 0, 0, PlugCable, "bring it back"},
    {"wait frame", "BYTE|.. ... [within TIME]", 1, kAny, WaitFrame,
     "answer when a frame begins so (.. is any byte)"},
    {"mark", "", 0, 0, Mark, "later waits look only at frames from now on"},
    {"status", "", 0, 0, Status, "tell the state of the cable and the counts"},
    {"mute", "TIME", 1, 1, Mute, "hear nothing for this time"},
    {"drop next", "COUNT", 1, 1, DropNext, "lose the next frames"},
    {"late", "TIME", 1, 1, Late, "hold back every reply, until \"late 0ms\""},
    {"garbage", "COUNT", 1, 1, Garbage, "send random bytes now"},
    {"split", "COUNT", 1, 1, Split, "send every reply in pieces, until \"split 1\""},
    {"wrong-length", "[COUNT]", 0, 1, WrongLength, "give the next replies a length one too high"},
    {"wrong-address", "[COUNT]", 0, 1, WrongAddress, "let the next replies name the next card"},
    {"noise", "CHANCE", 1, 1, Noise, "spoil a byte of so many exchanges, until \"noise 0%\""},
    {"faults off", "", 0, 0, FaultsOff, "end all of these"},
    {"help", "", 0, 0, Help, "tell these lines"},
    {"quit", "", 0, 0, Quit, "end the program"},
}};

bool Leads(const std::vector<std::string>& command, const std::vector<std::string>& line) {
  return command.size() <= line.size() && std::equal(command.begin(), command.end(), line.begin());
}

}  // namespace

std::span<const ControlCommand> ControlCommands() { return kCommands; }

Problem RunControlLine(VirtualBus& bus, std::string_view line, Reply& reply) {
  const std::vector<std::string> words = SplitWords(line);
  if (words.empty()) return {};
  for (const ControlCommand& command : kCommands) {
    const std::vector<std::string> name = SplitWords(command.words);
    if (!Leads(name, words)) continue;
    const auto arguments = Arguments(words).subspan(name.size());
    if (arguments.size() < command.least || arguments.size() > command.most) {
      return Problem("usage: " + std::string(command.words) + ' ' + std::string(command.arguments));
    }
    return command.run(bus, arguments, reply);
  }
  return Problem("unknown command \"" + std::string(line) + "\" (try help)");
}

Problem RunControlLines(VirtualBus& bus, std::span<const std::string> lines) {
  for (const std::string& line : lines) {
    Reply reply;
    if (const Problem problem = RunControlLine(bus, line, reply)) {
      return Problem("\"" + line + "\": " + problem.Text());
    }
    if (!reply.awaited.empty()) return Problem("\"" + line + "\": nothing to wait for yet");
  }
  return {};
}

}  // namespace virtualbus
