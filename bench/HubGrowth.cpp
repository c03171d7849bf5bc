#include "HubGrowth.h"

#include "Doors.h"
#include "Hub.h"
#include "Qelm.h"
#include "Results.h"
#include "Table.h"
#include "Visit.h"
#include "hub/http/WebClient.h"

namespace {

using hub::http::WebClient;
using Measured = std::vector<double> (Visit::*)();

constexpr int kQuestions = 100;
constexpr char kYear[] = "/run/bench/year";

double Median(std::vector<double> values) { return PercentileOf(std::move(values), 50); }

BusSetup WiredBus(int cards, int outputs) {
  return {.device = "/dev/ttyUSB0", .wired = true, .cards = cards, .outputs = outputs};
}

double Direct(const BusSetup& setup, Measured measured) {
  Qelm qelm(setup);
  qelm.ConnectConsole();
  qelm.Poll(setup.cards - setup.outputs);
  const auto door = OpenDirect(qelm);
  return Median((Visit(qelm.bus, *door).*measured)());
}

double ThroughHub(const BusSetup& setup, Measured measured) {
  Hub hub(setup);
  const auto door = OpenWebSocket();
  return Median((Visit(hub.bus, *door).*measured)());
}

void GrowClients(const std::string& folder) {
  const BusSetup setup = WiredBus(kCards, kOutputs);
  const double direct = Direct(setup, &Visit::Changes);
  Hub hub(setup);
  Crowd crowd;
  Table table(folder + "/hub-clients.dat",
              "clients  resident [KiB]  input latency of the last [us]  p99 [us]  direct [us]");
  for (const int clients : {1, 10, 30, 100, 300, 1000}) {
    crowd.GrowTo(static_cast<size_t>(clients));
    const auto times = Visit(hub.bus, crowd).Changes();
    table.Add({static_cast<double>(clients), static_cast<double>(hub.process.ResidentKilobytes()),
               Median(times), PercentileOf(times, 99), direct});
  }
}

// A command goes to the one output card among polled inputs; a change is of one of inputs alone.
void GrowCards(const std::string& folder) {
  Table table(folder + "/hub-cards.dat",
              "cards  command latency [us]  direct [us]  input latency [us]  direct [us]");
  for (const int cards : {1, 2, 4, 8, 16}) {
    const BusSetup commanded = WiredBus(cards, 1);
    const BusSetup read = WiredBus(cards, 0);
    table.Add({static_cast<double>(cards), ThroughHub(commanded, &Visit::Commands),
               Direct(commanded, &Visit::Commands), ThroughHub(read, &Visit::Changes),
               Direct(read, &Visit::Changes)});
  }
}

void GrowHistory(const std::string& folder) {
  Process({BUILD_FOLDER "/bench-year", kYear}).AwaitExit();
  const Hub hub(WiredBus(kCards, kOutputs), kYear);
  WebClient client = WebClient::ToPort(kHubPort);
  Table table(folder + "/hub-history.dat", "days  answer [us]  p99 [us]  its size [bytes]");
  for (const int days : {1, 7, 31, 365}) {
    const auto from = (Clock::now() - std::chrono::days(days)).time_since_epoch();
    const std::string path = "/api/history?channel=4.4&from=" +
                             std::to_string(std::chrono::floor<milliseconds>(from).count());
    std::vector<double> times;
    size_t size = 0;
    for (int i = 0; i < kQuestions; ++i) {
      const Time asked = Clock::now();
      size = client.Get(path).body.size();
      times.push_back(Microseconds(Clock::now() - asked));
    }
    table.Add({static_cast<double>(days), Median(times), PercentileOf(times, 99),
               static_cast<double>(size)});
  }
}

}  // namespace

void MeasureHubGrowth(const std::string& folder) {
  GrowClients(folder);
  GrowCards(folder);
  GrowHistory(folder);
}
