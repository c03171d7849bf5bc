#include "http/Metrics.h"

#include <fmt/format.h>
#include <sys/resource.h>
#include <unistd.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <map>

namespace hub::http {

namespace {

// Everything that is one number, read at once.
struct Sources {
  const model::Bus& bus;
  const store::Store& store;
  link::Link::Counters link;
  store::Store::Counters store_counters;
  const Counters& http;
  const Load& load;
};

double Resident() {
  std::ifstream file("/proc/self/statm");
  double size = 0;
  double resident = 0;
  file >> size >> resident;
  return resident * static_cast<double>(sysconf(_SC_PAGESIZE));
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
    {"qelm_http_connections", "gauge", "Connections that are open, WebSockets included.",
     [](const Sources& s) { return As(s.load.connections); }},
    {"qelm_http_turned_away_total", "counter", "Connections over the limit.",
     [](const Sources& s) { return As(s.http.turned_away); }},
    {"qelm_live_clients", "gauge", "WebSockets that are open.",
     [](const Sources& s) { return As(s.load.live_clients); }},
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
    {"qelm_store_written_bytes_total", "counter", "Bytes written to the disk.",
     [](const Sources& s) { return As(s.store_counters.bytes_written); }},
    {"qelm_store_waiting", "gauge", "Values that are not on the disk yet.",
     [](const Sources& s) { return As(s.store_counters.values_waiting); }},
    {"qelm_store_dropped_total", "counter", "Values that memory had no room for.",
     [](const Sources& s) { return As(s.store_counters.values_dropped); }},
    {"qelm_store_troubled", "gauge", "1 while something is wrong with the disk.",
     [](const Sources& s) { return As(!s.store.Trouble().empty()); }},
    {"process_resident_memory_bytes", "gauge", "Memory of the process.",
     [](const Sources&) { return Resident(); }},
    {"process_open_fds", "gauge", "Descriptors that are open.",
     [](const Sources&) { return Descriptors(); }},
    {"process_cpu_seconds_total", "counter", "Processor time of the process.",
     [](const Sources&) { return ProcessorSeconds(); }},
};

void AddHead(std::string& text, std::string_view name, std::string_view type,
             std::string_view help) {
  fmt::format_to(std::back_inserter(text), "# HELP {0} {2}\n# TYPE {0} {1}\n", name, type, help);
}

void AddByStatus(std::string& text, std::string_view name, std::string_view help,
                 const std::map<int, uint64_t>& counts) {
  AddHead(text, name, "counter", help);
  for (const auto& [status, count] : counts)
    fmt::format_to(std::back_inserter(text), "{}{{status=\"{}\"}} {}\n", name, status, count);
}

}  // namespace

std::string MetricsText(const api::House& house, const Counters& counters, const Load& load) {
  const Sources sources{house.bus,           house.store, house.link.Count(),
                        house.store.Count(), counters,    load};
  std::string text;
  for (const Row& row : kRows) {
    AddHead(text, row.name, row.type, row.help);
    fmt::format_to(std::back_inserter(text), "{} {}\n", row.name, row.value(sources));
  }
  AddByStatus(text, "qelm_http_requests_total", "Requests by the status of their answer.",
              counters.requests);
  return text;
}

}  // namespace hub::http
