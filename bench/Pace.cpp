#include "Pace.h"

#include <memory>

#include "Measurer.h"
#include "Proxy.h"
#include "Qelm.h"

namespace {

constexpr int kRounds = 5;
constexpr int kStarts = 5;
constexpr int kFirstProxyPort = 7000;
constexpr int kBatch = 120;  // commands under way at the same time
constexpr int kCommandBytes = 8;
constexpr int kPollBytes = 9;  // both with their replies and length bytes

// The systems of one run: all are up, and one at a time runs.
std::vector<std::unique_ptr<System>> StartAll(bool wired) {
  std::vector<std::unique_ptr<System>> systems;
  auto qelm = std::make_unique<Qelm>(BusSetup{.device = "/dev/ttyUSB0", .wired = wired});
  qelm->ConnectConsole();
  systems.push_back(std::move(qelm));
  int port = kFirstProxyPort;
  for (const ProxyKind& kind : ProxyKinds()) {
    const std::string device = "/run/bench/" + std::to_string(++port);
    systems.push_back(
        std::make_unique<Proxy>(kind, port, BusSetup{.device = device, .wired = wired}));
  }
  for (const auto& system : systems) system->Hold();
  return systems;
}

class Visit {
 public:
  Visit(Results& results, System& system, bool wired)
      : results_(results), system_(system), wired_(wired), measurer_(system) {}

  void Run() {
    system_.Poll(0);
    Add("command latency", "us", measurer_.CommandLatencies(200, milliseconds(1)));
    Add("commands, one at a time", "/s", {measurer_.CommandRate(1, 1)}, kCommandBytes);
    Add("commands, six cards", "/s", {measurer_.CommandRate(kOutputs, kBatch)}, kCommandBytes);
    RunPolling(1);
    RunPolling(kInputs);
    if (!wired_) RunIdle();
  }

 private:
  void RunIdle() {
    system_.Poll(0);
    const Activity idle = measurer_.Watch(milliseconds(500));
    Add("idle: processor", "%", {idle.percent});
    Add("idle: wake-ups", "1/s", {idle.wakeups});
    Add("resident memory", "KiB", {static_cast<double>(system_.process.ResidentKilobytes())});
    Add("threads", "threads", {static_cast<double>(system_.process.Threads())});
  }

  void RunPolling(int cards) {
    const std::string polling = cards == 1 ? "one card polled" : "ten cards polled";
    system_.Poll(cards);
    Add("input latency, " + polling, "us", measurer_.InputLatencies(100));
    const Activity busy = measurer_.Watch(milliseconds(400));
    Add("exchanges, " + polling, "/s", {busy.exchanges}, kPollBytes);
    if (cards == 1) return;
    Add(polling + ": processor", "%", {busy.percent});
    Add(polling + ": wake-ups", "1/s", {busy.wakeups});
  }

  // Where the line itself has a limit, it stands beside the systems.
  void Add(const std::string& name, const std::string& unit, std::vector<double> round,
           int line_bytes = 0) {
    const std::string measure = name + (wired_ ? ", wired" : "");
    results_.Add(measure, unit, system_.Name(), std::move(round));
    if (wired_ && line_bytes != 0 && system_.Name() == "qelm")
      results_.Add(measure, unit, "the line", {1e6 / (line_bytes * kByteMicroseconds)});
  }

  Results& results_;
  System& system_;
  bool wired_;
  Measurer measurer_;
};

void MeasureLowestSpeed(Results& results, Qelm& qelm) {
  qelm.Poll(0);
  qelm.Console("SPEED=1");
  Measurer measurer(qelm);
  results.Add("SPEED=1: command latency, wired", "us", "qelm",
              measurer.CommandLatencies(1000, milliseconds(5)));
  results.Add("SPEED=1: commands, one card, wired", "/s", "qelm",
              {500 / measurer.QueueSeconds(1, 500)});
  const Activity idle = measurer.Watch(std::chrono::seconds(2));
  results.Add("SPEED=1: idle: processor", "%", "qelm", {idle.percent});
  results.Add("SPEED=1: idle: wake-ups", "1/s", "qelm", {idle.wakeups});
  results.Add("resident memory at the end", "KiB", "qelm",
              {static_cast<double>(qelm.process.ResidentKilobytes())});
}

void MeasureStart(Results& results) {
  for (int i = 0; i < kStarts; ++i) {
    const Time began = Clock::now();
    Process daemon = StartDaemon(100);
    for (const int port : {kCaePort, kIoPort, kMonPort})
      Await(
          "the ports", [port] { return IsListening(port); }, microseconds(100));
    results.Add("start to listening", "ms", "qelm", {Seconds(Clock::now() - began) * 1000});
  }
}

void MeasureAll(Results& results, bool wired) {
  auto systems = StartAll(wired);
  for (int round = 0; round < kRounds; ++round) {
    for (const auto& system : systems) {
      system->Release();
      Visit(results, *system, wired).Run();
      system->Hold();
    }
  }
  if (!wired) return;
  systems[0]->Release();
  MeasureLowestSpeed(results, static_cast<Qelm&>(*systems[0]));
}

}  // namespace

Results MeasurePace() {
  Results results("floor");
  MeasureStart(results);
  for (const bool wired : {false, true}) MeasureAll(results, wired);
  return results;
}
