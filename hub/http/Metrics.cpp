#include "http/Metrics.h"

#include <fmt/format.h>
#include <sys/resource.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <map>
#include <sstream>

namespace hub::http {

namespace {

// Everything that is one number, read at once.
struct Sources {
  const model::Bus& bus;
  const store::Store& store;
  link::Link::Counters link;
  store::Store::Counters store_counters;
  access::Access::Counters access;
  const Counters& http;
  const api::Messages& broker;
};

// In bytes: of all that is mapped, of what is in memory.
struct Memory {
  double size = 0;
  double resident = 0;
};

Memory MemoryNow() {
  const auto page = static_cast<double>(sysconf(_SC_PAGESIZE));
  std::ifstream file("/proc/self/statm");
  Memory memory;
  file >> memory.size >> memory.resident;
  return {memory.size * page, memory.resident * page};
}

double MostDescriptors() {
  rlimit limit{};
  getrlimit(RLIMIT_NOFILE, &limit);
  return static_cast<double>(limit.rlim_cur);
}

// The 20th word behind the name, which may hold blanks, is the start in ticks since boot.
double StartTime() {
  std::ifstream boot("/proc/stat");
  std::string word;
  double booted = 0;
  while (boot >> word)
    if (word == "btime" && boot >> booted) break;
  std::ifstream file("/proc/self/stat");
  std::string line;
  std::getline(file, line);
  std::istringstream words(line.substr(line.rfind(')') + 1));
  for (int i = 0; i < 19; ++i) words >> word;
  double ticks = 0;
  words >> ticks;
  return booted + ticks / static_cast<double>(sysconf(_SC_CLK_TCK));
}

double Descriptors() {
  std::error_code error;
  const std::filesystem::directory_iterator all("/proc/self/fd", error);
  return static_cast<double>(std::distance(begin(all), end(all)));
}

double ProcessorSeconds() {
  rusage usage{};
  getrusage(RUSAGE_SELF, &usage);
  const auto seconds = [](const timeval& time) {
    return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_usec) / 1e6;
  };
  return seconds(usage.ru_utime) + seconds(usage.ru_stime);
}

struct Row {
  std::string_view name;
  std::string_view type;
  std::string_view help;
  double (*value)(const Sources&);
};

template <class Number>
double As(Number number) {
  return static_cast<double>(number);
}

// A name that ends in _total only grows.
constexpr Row kRows[] = {
    {"qelm_daemon_up", "gauge", "1 while the daemon has greeted on its three ports.",
     [](const Sources& s) { return As(s.bus.DaemonNow().state == model::DaemonState::kUp); }},
    {"qelm_adapter_up", "gauge", "1 while the daemon has the adapter; 0 also where it is unknown.",
     [](const Sources& s) { return As(s.bus.AdapterNow().state == model::AdapterState::kUp); }},
    {"qelm_daemon_waiting", "gauge", "1 while another program holds a port of the daemon.",
     [](const Sources& s) { return As(s.bus.DaemonNow().state == model::DaemonState::kWaiting); }},
    {"qelm_bus_pace_percent", "gauge", "The daemon's speed; 0 while it is unknown.",
     [](const Sources& s) { return As(s.bus.Pace().value_or(0)); }},
    {"qelm_bus_sequence_total", "counter", "Changes of the bus.",
     [](const Sources& s) { return As(s.bus.Sequence()); }},
    {"qelm_link_commands_total", "counter", "Commands that the daemon has acted on.",
     [](const Sources& s) { return As(s.link.commands); }},
    {"qelm_link_merged_total", "counter", "Commands that took the place of an earlier one.",
     [](const Sources& s) { return As(s.link.merged); }},
    {"qelm_link_refused_total", "counter", "Commands that came faster than the bus takes them.",
     [](const Sources& s) { return As(s.link.refused); }},
    {"qelm_link_reports_total", "counter", "Reports of input cards.",
     [](const Sources& s) { return As(s.link.reports); }},
    {"qelm_link_sessions_total", "counter", "Sessions of the daemon that were greeted.",
     [](const Sources& s) { return As(s.link.sessions); }},
    {"qelm_link_restored_total", "counter", "Frames that put outputs back.",
     [](const Sources& s) { return As(s.link.frames_restored); }},
    {"qelm_http_turned_away_total", "counter", "Connections over the limit.",
     [](const Sources& s) { return As(s.http.turned_away); }},
    {"qelm_logins_wrong_total", "counter", "Names or passwords that were wrong.",
     [](const Sources& s) { return As(s.access.wrong); }},
    {"qelm_logins_throttled_total", "counter", "Logins that had to wait.",
     [](const Sources& s) { return As(s.access.throttled); }},
    {"qelm_live_calls_total", "counter", "Calls over WebSockets.",
     [](const Sources& s) { return As(s.http.calls); }},
    {"qelm_live_messages_total", "counter", "Messages of changes that were sent.",
     [](const Sources& s) { return As(s.http.messages); }},
    {"qelm_live_merged_total", "counter", "Messages that stood for several changes.",
     [](const Sources& s) { return As(s.http.merged); }},
    {"qelm_live_lost_total", "counter", "Events that clients were too slow for.",
     [](const Sources& s) { return As(s.http.lost); }},
    {"qelm_live_cut_total", "counter", "WebSockets that did not take their answers.",
     [](const Sources& s) { return As(s.http.cut); }},
    {"qelm_broker_up", "gauge", "1 while the hub publishes on its broker.",
     [](const Sources& s) {
       const auto& broker = s.bus.BrokerNow();
       return As(broker && broker->state == model::BrokerState::kUp);
     }},
    {"qelm_broker_sent_total", "counter", "Messages to the broker.",
     [](const Sources& s) { return As(s.broker.sent); }},
    {"qelm_broker_heard_total", "counter", "Messages from the broker.",
     [](const Sources& s) { return As(s.broker.heard); }},
    {"qelm_broker_dropped_total", "counter", "Events that the broker was away or too slow for.",
     [](const Sources& s) { return As(s.broker.dropped); }},
    {"qelm_broker_merged_total", "counter", "Values that took the place of one not sent yet.",
     [](const Sources& s) { return As(s.broker.merged); }},
    {"qelm_store_written_bytes_total", "counter", "Bytes written to the disk.",
     [](const Sources& s) { return As(s.store_counters.bytes_written); }},
    {"qelm_store_waiting", "gauge", "Values that are not on the disk yet.",
     [](const Sources& s) { return As(s.store_counters.values_waiting); }},
    {"qelm_store_dropped_total", "counter", "Values that memory had no room for.",
     [](const Sources& s) { return As(s.store_counters.values_dropped); }},
    {"qelm_store_documents_waiting", "gauge", "Names, outputs and the like not on the disk yet.",
     [](const Sources& s) { return As(s.store_counters.documents_waiting); }},
    {"qelm_store_troubled", "gauge", "1 while something is wrong with the disk.",
     [](const Sources& s) { return As(!s.store.Trouble().empty()); }},
    {"process_resident_memory_bytes", "gauge", "Memory of the process.",
     [](const Sources&) { return MemoryNow().resident; }},
    {"process_virtual_memory_bytes", "gauge", "Address space of the process.",
     [](const Sources&) { return MemoryNow().size; }},
    {"process_open_fds", "gauge", "Descriptors that are open.",
     [](const Sources&) { return Descriptors(); }},
    {"process_max_fds", "gauge", "Descriptors that may be open.",
     [](const Sources&) { return MostDescriptors(); }},
    {"process_start_time_seconds", "gauge", "When the process began, in seconds since 1970.",
     [](const Sources&) { return StartTime(); }},
    {"process_cpu_seconds_total", "counter", "Processor time of the process.",
     [](const Sources&) { return ProcessorSeconds(); }},
};

void AddHead(std::string& text, std::string_view name, std::string_view type,
             std::string_view help) {
  fmt::format_to(std::back_inserter(text), "# HELP {0} {2}\n# TYPE {0} {1}\n", name, type, help);
}

void AddRequests(std::string& text, const std::map<int, uint64_t>& counts) {
  AddHead(text, "qelm_http_requests_total", "counter", "Requests by the status of their answer.");
  for (const auto& [status, count] : counts)
    fmt::format_to(std::back_inserter(text), "qelm_http_requests_total{{status=\"{}\"}} {}\n",
                   status, count);
}

void AddCards(std::string& text, const model::Bus& bus) {
  constexpr std::array<std::string_view, 3> kStates{"present", "silent", "absent"};
  std::array<int, kStates.size()> counts{};
  for (unsigned address = 0; address < protocol::kCardCount; ++address)
    if (const model::Card* const card = bus.At(address)) ++counts[static_cast<size_t>(card->state)];
  AddHead(text, "qelm_cards", "gauge", "Cards by what they do when they are asked.");
  for (size_t i = 0; i < kStates.size(); ++i)
    fmt::format_to(std::back_inserter(text), "qelm_cards{{state=\"{}\"}} {}\n", kStates[i],
                   counts[i]);
}

void AddTraffic(std::string& text, const api::Traffic& traffic) {
  const auto out = std::back_inserter(text);
  AddHead(text, "qelm_clients", "gauge", "Connections by the door they came in.");
  for (size_t door = 0; door < api::kDoorNames.size(); ++door)
    fmt::format_to(out, "qelm_clients{{door=\"{}\"}} {}\n", api::kDoorNames[door],
                   traffic.Guests(static_cast<api::Door>(door)));
  AddHead(text, "qelm_commands_total", "counter", "Commands for outputs by door and outcome.");
  for (size_t door = 0; door < api::kDoorNames.size(); ++door)
    for (size_t fate = 0; fate < api::kFateNames.size(); ++fate)
      fmt::format_to(out, "qelm_commands_total{{door=\"{}\",outcome=\"{}\"}} {}\n",
                     api::kDoorNames[door], api::kFateNames[fate],
                     traffic.Commands(static_cast<api::Door>(door), static_cast<api::Fate>(fate)));
}

void AddReceipts(std::string& text, const api::Traffic::Receipts& receipts) {
  constexpr std::string_view kName = "qelm_receipt_seconds";
  const auto out = std::back_inserter(text);
  AddHead(text, kName, "histogram", "From a command to the daemon's receipt.");
  for (size_t i = 0; i < api::Traffic::kReceiptBounds.size(); ++i)
    fmt::format_to(out, "{}_bucket{{le=\"{}\"}} {}\n", kName, api::Traffic::kReceiptBounds[i],
                   receipts.up_to[i]);
  fmt::format_to(out, "{0}_bucket{{le=\"+Inf\"}} {1}\n{0}_sum {2}\n{0}_count {1}\n", kName,
                 receipts.count, receipts.sum);
}

}  // namespace

std::string MetricsText(const api::House& house, const Counters& counters) {
  const Sources sources{house.bus,           house.store,          house.link.Count(),
                        house.store.Count(), house.access.Count(), counters,
                        house.traffic.broker};
  std::string text;
  for (const Row& row : kRows) {
    AddHead(text, row.name, row.type, row.help);
    fmt::format_to(std::back_inserter(text), "{} {}\n", row.name, row.value(sources));
  }
  AddCards(text, house.bus);
  AddTraffic(text, house.traffic);
  AddReceipts(text, house.traffic.ReceiptTimes());
  AddRequests(text, counters.requests);
  return text;
}

}  // namespace hub::http
