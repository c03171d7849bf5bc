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
  std::cerr << "qelm-bus: " << problem << '\n';
  return kRefusedToStart;
}

// Whatever makes it visible comes last: who sees the link finds everything else in place.
Problem Start(VirtualBus& bus, Recorder& recorder, Replayer& replayer, ControlSocket& control,
              const Options& options) {
  bus.wire.SetBaud(options.baud);
  bus.cable.SetLink(options.link);
  Problem problem = bus.Open();
  const auto then = [&](bool wanted, const auto& step) {
    if (problem.empty() && wanted) problem = step();
  };
  then(true, [&] { return PlugInitialCards(bus.adapter, options); });
  then(!options.replay.empty(), [&] { return replayer.Load(options.replay, options.fast); });
  then(!options.record.empty(), [&] { return recorder.Begin(options.record, bus.journal); });
  then(!options.control.empty(), [&] { return control.Listen(options.control); });
  then(true, [&] { return bus.cable.Plug(); });
  then(true, [&] { return RunControlLines(bus, options.lines); });
  if (!options.replay.empty()) {
    bus.exchange.SetAnswerer(
        [&](const Bytes& frame) { return replayer.Answer(frame, Clock::now()); });
  }
  return problem;
}

void RunWithPanel(VirtualBus& bus, Signals& signals) {
  Panel panel(bus);
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
  if (const Problem problem = Start(bus, recorder, replayer, control, *options); !problem.empty()) {
    return Refuse(problem);
  }
  if (with_panel) {
    RunWithPanel(bus, signals);
  } else {
    bus.loop.Run();
  }
  return 0;
}
