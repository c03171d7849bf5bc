// What the bench runs inside its sandbox, as the first process of a namespace: whatever
// it has started ends with it.
//   bench-pace pace FILE       measures the daemon beside the others; FILE gets it as JSON
//   bench-pace hub FILE        measures the hub beside the daemon's own ports
//   bench-pace growth FOLDER   measures how cost grows; FOLDER gets the curves
#include <unistd.h>

#include <algorithm>
#include <array>
#include <csignal>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <string_view>

#include "Growth.h"
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

int Run(std::string_view mode, const std::string& place) {
  PrepareSandbox();
  if (mode == "growth") {
    MeasureGrowth(place);
    return 0;
  }
  const bool is_hub = mode == "hub";
  const Results results = is_hub ? MeasureHub() : MeasurePace();
  const std::vector<Bar> bars = is_hub ? HubBars(results) : PaceBars(results);
  results.PrintTable();
  PrintBars(bars);
  results.WriteJson(place, bars);
  return 0;
}

}  // namespace

int main(int argc, char** argv) {
  constexpr std::array<std::string_view, 3> kModes{"pace", "hub", "growth"};
  if (argc != 3 || std::ranges::find(kModes, std::string_view(argv[1])) == kModes.end()) {
    std::fprintf(stderr, "usage: bench-pace pace FILE | hub FILE | growth FOLDER\n");
    return 2;
  }
  for (const int signal : {SIGINT, SIGTERM}) std::signal(signal, [](int) { _exit(1); });
  try {
    return Run(argv[1], argv[2]);
  } catch (const std::exception& problem) {
    std::fprintf(stderr, "bench: %s\n", problem.what());
    return 1;
  }
}
