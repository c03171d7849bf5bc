#include "HubPace.h"

#include <filesystem>
#include <fstream>
#include <memory>
#include <random>

#include "Doors.h"
#include "hub/http/WebClient.h"

namespace {

using hub::http::WebClient;

constexpr int kRounds = 5;
constexpr int kSamples = 100;
constexpr int kBurst = 120;  // commands; few enough of a card that the hub merges none
constexpr int kListeners = 10;
constexpr int kChangesEach = 8;  // lines of a block that change together
constexpr int kChanges = 3000;   // of lines, a second
constexpr std::chrono::seconds kFloodTime{4};
constexpr std::chrono::seconds kIdleTime{10};
constexpr char kSettings[] = "/run/bench/hub.toml";
constexpr char kBrokerSettings[] = "/run/bench/mosquitto.conf";
constexpr char kStore[] = "/run/bench/store";

void WriteSettings() {
  std::ofstream(kSettings)
      << "[http]\nmax-connections = 1200\n[daemon]\nlog = \"/run/qelm/qelm.log\"\n"
      << "[store]\nfolder = \"" << kStore << "\"\n"
      << "[broker]\nhost = \"127.0.0.1\"\nname = \"bench\"\n";
  std::ofstream(kBrokerSettings) << "user root\npersistence false\nlistener " << kBrokerPort
                                 << " 127.0.0.1\nallow_anonymous true\nset_tcp_nodelay true\n";
  std::filesystem::remove_all(kStore);
  std::filesystem::create_directory(kStore);
}

bool Says(const std::string& path, const std::string& part) {
  return WebClient::ToPort(kHubPort).Get(path).body.find(part) != std::string::npos;
}

// Bus, daemon, broker and hub, with ten input cards polled.
class Hub {
 public:
  Hub() : bus({.device = "/dev/ttyUSB0", .wired = true}), daemon_(StartDaemon(100)) {
    WriteSettings();
    broker_ = Process({"/usr/sbin/mosquitto", "-c", kBrokerSettings});
    Await("the broker", [] { return IsListening(kBrokerPort); });
    Start();
    Await("the cards", [] { return Says("/api/cards/F", R"("state":"present")"); });
    WebClient::ToPort(kHubPort).Write("PUT", "/api/bus/polling", R"({"polling":true})");
    Await("the inputs", [] { return Says("/api/channels/F.0", R"("known":true)"); });
  }

  void Start() {
    process = {};
    const Time began = Clock::now();
    process = Process(
        {BUILD_FOLDER "/qelm-hub", "--config", kSettings, "--socket", "/run/bench/hub.sock"});
    Await(
        "the hub", [] { return IsListening(kHubPort); }, microseconds(100));
    Says("/api/bus", "");
    start_time = Clock::now() - began;
  }

  Bus bus;
  Process process;
  Clock::duration start_time{};

 private:
  Process daemon_;
  Process broker_;
};

// One lamp on and off, one contact up and down, all through one door.
class Visit {
 public:
  Visit(Results& results, Bus& bus, std::string name, Door& door)
      : results_(results), bus_(bus), name_(std::move(name)), door_(door) {}

  void Commands() {
    std::vector<double> times;
    for (int i = 0; i < kSamples; ++i) {
      Pause();
      const Time sent = Clock::now();
      door_.Switch(0, 0, i % 2 == 0);
      times.push_back(Microseconds(bus_.AwaitCommand(0, i % 2 == 0 ? 0xFE : 0xFF) - sent));
      door_.AwaitAnswers();
    }
    results_.Add("command latency", "us", name_, times);
  }

  void Burst() {
    bus_.Order("mark");
    const Time began = Clock::now();
    for (int i = 0; i + 1 < kBurst; ++i) door_.Switch(i % kOutputs, 0, i / kOutputs % 2 == 1);
    door_.Switch(kOutputs - 1, 1, true);  // a frame like no other: the line before it is off
    door_.AwaitAnswers();
    bus_.Order("wait frame 10 05 02 FD within 60s");
    results_.Add("six-card burst", "/s", name_, {kBurst / Seconds(Clock::now() - began)});
    for (int card = 0; card < kOutputs; ++card) door_.Switch(card, card == 5 ? 1 : 0, false);
    door_.AwaitAnswers();
    bus_.ForgetEvents(milliseconds(50));
  }

  void Changes() {
    std::vector<double> times;
    for (int i = 0; i < kSamples; ++i) {
      Pause();
      const bool on = i % 2 == 0;
      const Time changed = Set(on);
      times.push_back(Microseconds(door_.AwaitContact(bus_.first_input, on) - changed));
    }
    results_.Add("input latency", "us", name_, times);
  }

 private:
  Time Set(bool on) {
    const std::string card = Hex(bus_.first_input, 1);
    const std::string value = on ? "01" : "00";
    bus_.Order("set " + card + " 0 " + value);
    return bus_.AwaitEvent("card " + card + " set to " + value);
  }
  // So that any point of a round of the daemon is met.
  void Pause() {
    std::this_thread::sleep_for(microseconds(std::uniform_int_distribution<>(0, 6000)(engine_)));
  }

  Results& results_;
  Bus& bus_;
  std::string name_;
  Door& door_;
  std::mt19937 engine_{1};
};

// The last of so many clients of the WebSocket to read a change.
void MeasureCrowd(Results& results, Hub& hub, int count) {
  std::vector<std::unique_ptr<Door>> crowd;
  for (int i = 0; i < count; ++i) crowd.push_back(OpenWebSocket());
  std::vector<double> times;
  for (int i = 0; i < kSamples / 2; ++i) {
    const bool on = i % 2 == 0;
    hub.bus.Order("set 6 0 " + std::string(on ? "01" : "00"));
    const Time changed = hub.bus.AwaitEvent("card 6 set to");
    Time last;
    for (const auto& door : crowd) last = door->AwaitContact(hub.bus.first_input, on);
    times.push_back(Microseconds(last - changed));
  }
  results.Add("input latency", "us", "the last of " + std::to_string(count) + " WebSockets", times);
}

void AddMemory(Results& results, Hub& hub, const std::string& system) {
  results.Add("resident memory", "KiB", system,
              {static_cast<double>(hub.process.ResidentKilobytes())});
}

void MeasureMemory(Results& results, Hub& hub) {
  std::vector<std::unique_ptr<Door>> crowd;
  for (const size_t count : {50U, 1000U}) {
    while (crowd.size() < count) crowd.push_back(OpenWebSocket());
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
  const auto door = OpenDirect(qelm);
  Visit visit(results, qelm.bus, "direct", *door);
  visit.Commands();
  visit.Burst();
  visit.Changes();
}

void VisitHub(Results& results) {
  Hub hub;
  results.Add("start to serving", "ms", "hub", {Seconds(hub.start_time) * 1000});
  AddMemory(results, hub, "at start");
  {
    const auto door = OpenHttp();
    Visit(results, hub.bus, "HTTP", *door).Commands();
  }
  const struct {
    const char* name;
    std::unique_ptr<Door> (*open)();
  } doors[] = {{"WebSocket", OpenWebSocket}, {"text port", OpenText}, {"broker", OpenBroker}};
  for (const auto& [name, open] : doors) {
    const auto door = open();
    Visit visit(results, hub.bus, name, *door);
    visit.Commands();
    visit.Burst();
    visit.Changes();
  }
  MeasureIdle(results, hub);
  MeasureCrowd(results, hub, 100);
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
