#include "HubPace.h"

#include <memory>
#include <thread>

#include "Doors.h"
#include "Hub.h"
#include "Qelm.h"
#include "Visit.h"

namespace {

constexpr int kRounds = 5;
constexpr int kListeners = 10;
constexpr int kChangesEach = 8;  // lines of a block that change together
constexpr int kChanges = 3000;   // of lines, a second
constexpr std::chrono::seconds kFloodTime{4};
constexpr std::chrono::seconds kIdleTime{10};

void AddAll(Results& results, const std::string& name, Bus& bus, Door& door) {
  Visit visit(bus, door);
  results.Add("command latency", "us", name, visit.Commands());
  results.Add("six-card burst", "/s", name, {visit.Burst()});
  results.Add("input latency", "us", name, visit.Changes());
}

void MeasureCrowd(Results& results, Hub& hub) {
  Crowd crowd;
  crowd.GrowTo(100);
  results.Add("input latency", "us", "the last of 100 WebSockets", Visit(hub.bus, crowd).Changes());
}

void AddMemory(Results& results, Hub& hub, const std::string& system) {
  results.Add("resident memory", "KiB", system,
              {static_cast<double>(hub.process.ResidentKilobytes())});
}

void MeasureMemory(Results& results, Hub& hub) {
  Crowd crowd;
  for (const size_t count : {50U, 1000U}) {
    crowd.GrowTo(count);
    AddMemory(results, hub, std::to_string(count) + " WebSockets");
  }
}

void MeasureIdle(Results& results, Hub& hub) {
  const auto page = OpenWebSocket();
  hub.bus.ForgetEvents(milliseconds(100));
  const Usage before = hub.process.Used();
  std::this_thread::sleep_for(kIdleTime);
  const Usage after = hub.process.Used();
  const double seconds = Seconds(kIdleTime);
  results.Add("idle, a page open: processor", "%", "hub",
              {(after.seconds - before.seconds) / seconds * 100});
  results.Add("idle, a page open: wake-ups", "1/s", "hub",
              {static_cast<double>(after.wakeups - before.wakeups) / seconds});
}

// All ten input cards change in turn; ten clients read it all.
void MeasureFlood(Results& results, Hub& hub) {
  std::vector<std::unique_ptr<Door>> crowd;
  std::vector<std::jthread> readers;
  for (int i = 0; i < kListeners; ++i) crowd.push_back(OpenWebSocket());
  for (const auto& door : crowd)
    readers.emplace_back([&door, &hub] { door->AwaitContact(hub.bus.first_input, true); });
  const Usage before = hub.process.Used();
  const Time began = Clock::now();
  long sets = 0;
  for (; Clock::now() - began < kFloodTime; ++sets) {
    const int card = 1 + static_cast<int>(sets % (kInputs - 1));
    hub.bus.Order("set " + Hex(hub.bus.first_input + card, 1) + " 0 " +
                  (sets / (kInputs - 1) % 2 == 0 ? "FF" : "00"));
    std::this_thread::sleep_until(began + std::chrono::seconds(sets + 1) * kChangesEach / kChanges);
  }
  const double seconds = Seconds(Clock::now() - began);
  const Usage after = hub.process.Used();
  hub.bus.Order("set 6 0 01");
  readers.clear();
  hub.bus.Order("set 6 0 00");
  results.Add("3,000 changes a second to 10 WebSockets: processor", "%", "hub",
              {(after.seconds - before.seconds) / seconds * 100});
  results.Add("3,000 changes a second to 10 WebSockets: changes", "1/s", "hub",
              {static_cast<double>(sets) * kChangesEach / seconds});
  hub.bus.ForgetEvents(milliseconds(100));
}

void VisitDirect(Results& results) {
  Qelm qelm({.device = "/dev/ttyUSB0", .wired = true});
  qelm.ConnectConsole();
  qelm.Poll(kInputs);
  AddAll(results, "direct", qelm.bus, *OpenDirect(qelm));
}

void VisitHub(Results& results) {
  Hub hub({.device = "/dev/ttyUSB0", .wired = true});
  results.Add("start to serving", "ms", "hub", {Seconds(hub.start_time) * 1000});
  AddMemory(results, hub, "at start");
  {
    const auto door = OpenHttp();
    results.Add("command latency", "us", "HTTP", Visit(hub.bus, *door).Commands());
  }
  const struct {
    const char* name;
    std::unique_ptr<Door> (*open)();
  } doors[] = {{"WebSocket", OpenWebSocket}, {"text port", OpenText}, {"broker", OpenBroker}};
  for (const auto& [name, open] : doors) AddAll(results, name, hub.bus, *open());
  MeasureIdle(results, hub);
  MeasureCrowd(results, hub);
  MeasureFlood(results, hub);
  MeasureMemory(results, hub);
}

struct Row {
  const char* measure;
  const char* system;
  bool is_ratio;  // to the direct client; else the value is limited
  bool at_least;
  double limit;
};

constexpr Row kRows[] = {
    {"command latency", "WebSocket", true, false, 1.4},
    {"command latency", "broker", true, false, 1.9},
    {"input latency", "WebSocket", true, false, 1.3},
    {"six-card burst", "WebSocket", true, true, 0.8},
    {"3,000 changes a second to 10 WebSockets: processor", "hub", false, false, 30},
    {"idle, a page open: processor", "hub", false, false, 0.5},
    {"idle, a page open: wake-ups", "hub", false, false, 5},
    {"resident memory", "at start", false, false, 12 * 1024},
    {"resident memory", "50 WebSockets", false, false, 16 * 1024},
    {"resident memory", "1000 WebSockets", false, false, 50 * 1024},
    {"start to serving", "hub", false, false, 150},
};

}  // namespace

Results MeasureHub() {
  Results results("direct");
  for (int round = 0; round < kRounds; ++round) {
    VisitDirect(results);
    VisitHub(results);
  }
  return results;
}

std::vector<Bar> HubBars(const Results& results) {
  std::vector<Bar> bars;
  for (const Row& row : kRows) {
    const double value = row.is_ratio ? results.Ratio(row.measure, row.system, "direct")
                                      : results.Percentile(row.measure, row.system, 50);
    const char* const other = row.is_ratio ? ", to direct" : "";
    bars.push_back(
        {std::string(row.measure) + ", " + row.system + other, value, row.limit, row.at_least});
  }
  const double crowd = results.Percentile("input latency", "the last of 100 WebSockets", 50) -
                       results.Percentile("input latency", "direct", 50);
  bars.push_back({"input latency, the last of 100 WebSockets, over direct [us]", crowd, 4000});
  return bars;
}
