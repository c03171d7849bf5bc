#include "control/ControlCommands.h"

#include <algorithm>
#include <array>
#include <tuple>
#include <type_traits>

#include "control/Arguments.h"

namespace virtualbus {

namespace {

constexpr size_t kHelpColumn = 38;
constexpr size_t kLongestNote = 200;  // a line of the events stays short enough to be read

using FrameCount = Count<0, 1'000'000>;

struct ControlCommand {
  std::string_view words;
  std::string_view arguments;  // as usage and help show them
  std::string_view help;
  WordCount count;  // of the arguments
  Reply (*run)(VirtualBus& bus, Words arguments);
};

// A handler returns nothing, a problem or a reply. The types of its arguments say how many words
// there are and how to read them.
template <auto kHandler>
struct Typed;

template <typename Result, typename... Arguments, Result (*kHandler)(VirtualBus&, Arguments...)>
struct Typed<kHandler> {
  static constexpr WordCount kCount{(kWordCount<std::decay_t<Arguments>>.least + ... + 0),
                                    (kWordCount<std::decay_t<Arguments>>.most + ... + 0)};

  static Reply Run(VirtualBus& bus, [[maybe_unused]] Words words) {
    std::tuple<std::decay_t<Arguments>...> read;
    return std::apply(
        [&](auto&... argument) -> Reply {
          Problem problem;
          static_cast<void>(((problem = Read(words, argument), !problem) && ...));
          if (problem) return {problem};
          if constexpr (std::is_void_v<Result>) {
            kHandler(bus, argument...);
            return {};
          } else {
            return {kHandler(bus, argument...)};
          }
        },
        read);
  }
};

template <auto kHandler>
constexpr ControlCommand Row(std::string_view words, std::string_view arguments,
                             std::string_view help) {
  return {words, arguments, help, Typed<kHandler>::kCount, Typed<kHandler>::Run};
}

Problem Set(VirtualBus& bus, Address address, Byte block, const Bytes& values) {
  return bus.card_operator.Set(address, block, values);
}

Problem Ramp(VirtualBus& bus, Address address, Byte block, Byte from, Byte to, Duration time) {
  return bus.card_operator.Ramp(address, block, from, to, time.value);
}

Problem Press(VirtualBus& bus, Address address, Byte code) {
  return bus.card_operator.Press(address, code);
}

Problem Release(VirtualBus& bus, Address address, std::optional<Byte> code) {
  return bus.card_operator.Release(address, code);
}

Problem Turn(VirtualBus& bus, Address address, Count<-999, 999> steps) {
  return bus.card_operator.Turn(address, static_cast<int>(steps.value));
}

Reply Show(VirtualBus& bus, Address address) {
  const BusAdapter::Slot& slot = bus.adapter.At(address);
  if (slot.kind == nullptr) return {bus.adapter.WhyAbsent(address)};
  const std::string state = slot.pulled ? " (pulled)" : "";
  Reply reply;
  reply.lines.push_back("card " + HexDigit(address) + " " + std::string(slot.kind->word) + state);
  for (const std::string& line : slot.card->Show()) reply.lines.push_back("  " + line);
  return reply;
}

Problem PullOrPlugCard(VirtualBus& bus, Address address, PlugAction action,
                       std::optional<Kind> kind) {
  if (action == PlugAction::kPull) return bus.card_operator.PullCard(address);
  return bus.card_operator.PlugCard(address, kind ? kind->value : nullptr);
}

Problem PullCable(VirtualBus& bus) { return bus.cable.Pull(); }
Problem PlugCable(VirtualBus& bus) { return bus.cable.Plug(); }

Reply WaitFrame(VirtualBus&, const AwaitedFrame& frame) {
  return {.awaited = frame.pattern, .timeout = frame.timeout.value};
}

Reply Mark(VirtualBus&) { return {.mark = true}; }

Reply Status(VirtualBus& bus) {
  const Exchange::Counts& counts = bus.exchange.Totals();
  const std::string cable = bus.cable.IsPlugged() ? "plugged" : "pulled";
  Reply reply{.lines = {
                  "  device " + bus.wire.DevicePath(),
                  "  cable " + cable,
                  "  frames " + std::to_string(counts.frames),
                  "  replies " + std::to_string(counts.replies),
                  "  lost " + std::to_string(counts.lost),
                  "  shaped " + std::to_string(counts.shaped),
              }};
  for (const std::string& fault : bus.faults.InEffect()) reply.lines.push_back("  fault " + fault);
  return reply;
}

void Mute(VirtualBus& bus, Duration time) { bus.faults.Mute(time.value); }
void DropNext(VirtualBus& bus, FrameCount frames) { bus.faults.DropNext(frames); }
void Late(VirtualBus& bus, Duration delay) { bus.faults.Late(delay.value); }
void Garbage(VirtualBus& bus, Count<1, 4096> bytes) {
  bus.exchange.SendGarbage(static_cast<size_t>(bytes.value));
}
void Split(VirtualBus& bus, Count<1, 255> pieces) {
  bus.faults.Split(static_cast<size_t>(pieces.value));
}
void Noise(VirtualBus& bus, Chance chance) { bus.faults.Noise(chance); }
void FaultsOff(VirtualBus& bus) { bus.faults.Off(); }

void WrongLength(VirtualBus& bus, std::optional<FrameCount> replies) {
  bus.faults.WrongLength(replies ? replies->value : 1);
}

void WrongAddress(VirtualBus& bus, std::optional<FrameCount> replies) {
  bus.faults.WrongAddress(replies ? replies->value : 1);
}

Problem Note(VirtualBus& bus, const RestOfLine& text) {
  if (text.value.size() > kLongestNote) {
    return Problem("a note has at most " + std::to_string(kLongestNote) + " bytes");
  }
  bus.journal.Note(text);
  return {};
}

Reply Quit(VirtualBus&) { return {.quit = true}; }

Reply Help(VirtualBus& bus);

constexpr std::array kCommands{
    Row<Set>("set", "ADDR BLOCK BYTE...", "give input blocks, from BLOCK on, these values"),
    Row<Ramp>("ramp", "ADDR BLOCK FROM TO TIME",
              "move an input block evenly from one value to another"),
    Row<Press>("press", "ADDR CODE",
               "press a key of a key card, or line 00 to 0F of an input card"),
    Row<Release>("release", "ADDR [CODE]", "let it go; without a code, all that is pressed"),
    Row<Turn>("turn", "ADDR STEPS", "turn the encoder, to the left below 0"),
    Row<Show>("show", "ADDR", "show what the card holds"),
    Row<PullOrPlugCard>("card", "ADDR pull|plug [KIND]",
                        "pull a card, plug it again, or plug a new one"),
    Row<PullCable>("cable pull", "", "take away the device"),
    Row<PlugCable>("cable plug", "", "bring it back"),
    Row<WaitFrame>("wait frame", "BYTE|.. ... [within TIME]",
                   "answer when a frame begins so (.. is any byte)"),
    Row<Mark>("mark", "", "later waits look only at frames from now on"),
    Row<Status>("status", "", "show the cable, the counts, and faults that are on"),
    Row<Note>("note", "TEXT...", "write a text into the events"),
    Row<Mute>("mute", "TIME", "lose every frame for this time"),
    Row<DropNext>("drop next", "COUNT", "lose the next frames"),
    Row<Late>("late", "TIME", "hold back every reply, until \"late 0ms\""),
    Row<Garbage>("garbage", "COUNT", "send random bytes now"),
    Row<Split>("split", "COUNT", "send every reply in pieces, until \"split 1\""),
    Row<WrongLength>("wrong-length", "[COUNT]", "give the next replies a length one too high"),
    Row<WrongAddress>("wrong-address", "[COUNT]", "let the next replies name the next card"),
    Row<Noise>("noise", "CHANCE", "spoil a byte of so many exchanges, until \"noise 0%\""),
    Row<FaultsOff>("faults off", "", "end all of these"),
    Row<Help>("help", "", "list these lines"),
    Row<Quit>("quit", "", "end the program"),
};

Reply Help(VirtualBus&) {
  Reply reply;
  for (const ControlCommand& command : kCommands) {
    std::string line = "  " + std::string(command.words) + ' ' + std::string(command.arguments);
    line.resize(std::max(line.size() + 2, kHelpColumn), ' ');
    reply.lines.push_back(line + std::string(command.help));
  }
  return reply;
}

bool Leads(const std::vector<std::string>& command, const std::vector<std::string>& line) {
  return command.size() <= line.size() && std::equal(command.begin(), command.end(), line.begin());
}

}  // namespace

Reply RunControlLine(VirtualBus& bus, std::string_view line) {
  const std::vector<std::string> words = SplitWords(line);
  if (words.empty()) return {};
  for (const ControlCommand& command : kCommands) {
    const std::vector<std::string> name = SplitWords(command.words);
    if (!Leads(name, words)) continue;
    const Words arguments = Words(words).subspan(name.size());
    if (arguments.size() >= command.count.least && arguments.size() <= command.count.most) {
      return command.run(bus, arguments);
    }
    return {Problem("usage: " + std::string(command.words) + ' ' + std::string(command.arguments))};
  }
  return {Problem("unknown command \"" + std::string(line) + "\" (try help)")};
}

Problem RunControlLines(VirtualBus& bus, std::span<const std::string> lines) {
  for (const std::string& line : lines) {
    const Reply reply = RunControlLine(bus, line);
    if (reply.problem) return Problem("\"" + line + "\": " + reply.problem.Text());
    if (!reply.awaited.empty()) return Problem("\"" + line + "\": nothing to wait for yet");
  }
  return {};
}

}  // namespace virtualbus
