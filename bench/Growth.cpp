#include "Growth.h"

#include "Measurer.h"
#include "Qelm.h"
#include "Results.h"
#include "Table.h"

namespace {

constexpr int kSamples = 300;
constexpr int kRepeats = 5;

void GrowCards(const std::string& folder) {
  Qelm qelm({.device = "/dev/ttyUSB0", .wired = true, .outputs = 0});
  qelm.ConnectConsole();
  Measurer measurer(qelm);
  Table table(folder + "/cards.dat",
              "polled cards  latency [us]  p99 [us]  exchanges/s  processor [%]");
  for (const int cards : {1, 4, 10, 16}) {
    qelm.Poll(cards);
    const auto latencies = measurer.InputLatencies(kSamples);
    const Activity busy = measurer.Watch(std::chrono::seconds(2));
    table.Add({static_cast<double>(cards), PercentileOf(latencies, 50), PercentileOf(latencies, 99),
               busy.exchanges, busy.percent});
  }
}

void GrowClients(const std::string& folder) {
  Qelm qelm({.device = "/dev/ttyUSB0", .wired = true});
  Measurer measurer(qelm);
  Table table(folder + "/clients.dat",
              "clients  command latency [us]  p99 [us]  processor [%]  wake-ups/s");
  for (const int clients : {1, 2, 3}) {
    if (clients == 2) qelm.ConnectConsole();
    if (clients == 3) qelm.ConnectMonitor();
    const auto latencies = measurer.CommandLatencies(kSamples, milliseconds(1));
    const Activity idle = measurer.Watch(std::chrono::seconds(2));
    table.Add({static_cast<double>(clients), PercentileOf(latencies, 50),
               PercentileOf(latencies, 99), idle.percent, idle.wakeups});
  }
}

void GrowQueue(const std::string& folder) {
  Qelm qelm({.device = "/dev/ttyUSB0", .tells_events = false});
  Measurer measurer(qelm);
  Table table(folder + "/queue.dat",
              "queued commands  all of them [ms]  each [us]  resident [KiB]");
  for (const int count : {1, 10, 100, 1000, 10'000}) {
    std::vector<double> times;
    for (int i = 0; i < kRepeats; ++i) times.push_back(measurer.QueueSeconds(1, count));
    const double seconds = PercentileOf(times, 50);
    table.Add({static_cast<double>(count), seconds * 1e3, seconds * 1e6 / count,
               static_cast<double>(qelm.process.ResidentKilobytes())});
  }
}

}  // namespace

void MeasureGrowth(const std::string& folder) {
  GrowCards(folder);
  GrowClients(folder);
  GrowQueue(folder);
}
