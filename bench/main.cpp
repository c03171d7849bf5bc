// What the bench runs inside its sandbox, as the first process of a namespace: whatever
// it has started ends with it.
//   bench-pace pace FILE           measures the daemon beside the others; FILE gets it as JSON
//   bench-pace hub FILE            measures the hub beside the daemon's own ports
//   bench-pace growth FOLDER       measures how the daemon's cost grows; FOLDER gets the curves
//   bench-pace hub-growth FOLDER   measures how the hub's cost grows
#include <unistd.h>

#include <algorithm>
#include <array>
#include <csignal>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <string_view>

#include "Growth.h"
#include "HubGrowth.h"
#include "HubPace.h"
#include "Pace.h"
#include "Process.h"
#include "Results.h"

namespace {

void PrepareSandbox() {
  // ser2net knows no names and numbers where there is nothing but the loopback network.
  Process({"ip", "address", "add", "192.0.2.1/32", "dev", "lo"}).AwaitExit();
  std::filesystem::create_directory("/run/bench");
  // Events of a bus wait in a socket until they are looked at, more of them than usual.
  std::ofstream("/proc/sys/net/unix/max_dgram_qlen") << "10000";
}

void Report(const Results& results, const std::vector<Bar>& bars, const std::string& file) {
  results.PrintTable();
  PrintBars(bars);
  results.WriteJson(file, bars);
}

void RunPace(const std::string& file) {
  const Results results = MeasurePace();
  Report(results, PaceBars(results), file);
}

void RunHub(const std::string& file) {
  const Results results = MeasureHub();
  Report(results, HubBars(results), file);
}

struct Mode {
  std::string_view name;
  void (*run)(const std::string& place);
};

constexpr std::array<Mode, 4> kModes{{
    {"pace", RunPace},
    {"hub", RunHub},
    {"growth", MeasureGrowth},
    {"hub-growth", MeasureHubGrowth},
}};

}  // namespace

int main(int argc, char** argv) {
  const auto* const mode =
      std::ranges::find(kModes, std::string_view(argc == 3 ? argv[1] : ""), &Mode::name);
  if (mode == kModes.end()) {
    std::fprintf(stderr, "usage: bench-pace pace|hub FILE | growth|hub-growth FOLDER\n");
    return 2;
  }
  for (const int signal : {SIGINT, SIGTERM}) std::signal(signal, [](int) { _exit(1); });
  try {
    PrepareSandbox();
    mode->run(argv[2]);
    return 0;
  } catch (const std::exception& problem) {
    std::fprintf(stderr, "bench: %s\n", problem.what());
    return 1;
  }
}
