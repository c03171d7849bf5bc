#include <unistd.h>

#include <iostream>

#include "InitialCards.h"
#include "Options.h"
#include "base/Signals.h"
#include "bus/Replayer.h"
#include "bus/VirtualBus.h"
#include "control/ControlSocket.h"
#include "journal/EventPrinter.h"
#include "journal/PollFilter.h"
#include "journal/Recorder.h"
#include "panel/Panel.h"

using namespace virtualbus;

namespace {

constexpr int kRefusedToStart = 2;

int Refuse(const Problem& problem) {
  std::cerr << "qelm-bus: " << problem.Text() << '\n';
  return kRefusedToStart;
}

// The link comes after everything that its reader may need: the cards, the recording, the socket.
Problem Start(VirtualBus& bus, Recorder& recorder, Replayer& replayer, ControlSocket& control,
              const Options& options) {
  bus.wire.SetBaud(options.baud);
  bus.cable.SetLink(options.link);
  if (Problem problem = bus.Open()) return problem;
  if (Problem problem = PlugInitialCards(bus.adapter, options)) return problem;
  if (!options.replay.empty()) {
    if (Problem problem = replayer.Load(options.replay, options.fast)) return problem;
    bus.exchange.SetAnswerer(
        [&](const Bytes& frame) { return replayer.Answer(frame, Clock::now()); });
  }
  if (!options.record.empty()) {
    if (Problem problem = recorder.Begin(options.record, bus.journal)) return problem;
  }
  if (!options.control.empty()) {
    if (Problem problem = control.Listen(options.control)) return problem;
  }
  if (Problem problem = bus.cable.Plug()) return problem;
  return RunControlLines(bus, options.lines);
}

void RunWithPanel(VirtualBus& bus, Signals& signals, const std::string& control_path) {
  Panel panel(bus, control_path);
  signals.OnResize([&] { panel.OnResize(); });
  bus.journal.Listen(PollFilter([&](const Entry& entry) { panel.OnEvent(entry); }));
  bus.loop.Run();
}

}  // namespace

int main(int argc, char** argv) {
  int status = 0;
  const auto options = ReadOptions(argc, argv, status);
  if (!options) return status;
  const bool with_panel = !options->plain && isatty(STDIN_FILENO) && isatty(STDOUT_FILENO);

  VirtualBus bus(options->seed);
  Signals signals(bus.loop);
  EventPrinter printer(bus.loop, STDOUT_FILENO);
  if (!with_panel)
    bus.journal.Listen(PollFilter([&](const Entry& entry) { printer.Print(entry); }));
  Recorder recorder(bus.loop);
  Replayer replayer;
  ControlSocket control(bus);
  if (const Problem problem = Start(bus, recorder, replayer, control, *options)) {
    return Refuse(problem);
  }
  if (with_panel) {
    RunWithPanel(bus, signals, options->control);
  } else {
    bus.loop.Run();
  }
  return 0;
}
