#include "doctor/Look.h"

#include <grp.h>
#include <sys/statvfs.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <thread>

#include "base/Failure.h"
#include "doctor/Ports.h"

namespace ctl::doctor {

namespace fs = std::filesystem;

namespace {

constexpr char kDaemonProgram[] = "qelm";
constexpr char kDaemonUser[] = "qelm";
constexpr char kVirtualBus[] = "qelm-bus";  // has both ends of its terminal open
constexpr char kHubProgram[] = "qelm-hub";
constexpr char kDeviceName[] = "ttyUSB";
constexpr int kPagePort = 5080;
constexpr unsigned kReadWrite = 6;
constexpr unsigned kWrite = 2;
constexpr unsigned kWriteAndSearch = 3;

// What the log says of the adapter.
constexpr const char* kLinkTexts[] = {
    "hardware found on ",         "comm timeout ",  "ttyUSB devices couldn't be found",
    "for hardware communication", "from tcsetattr", "try to catch hardware on "};

std::optional<std::string> ReadWhole(const std::string& path) {
  std::ifstream file(path);
  if (!file) return std::nullopt;
  std::ostringstream text;
  text << file.rdbuf();
  return text.str();
}

void ReadConfigFile(const Places& places, Facts& facts) {
  facts.config_file = places.config_file;
  errno = 0;
  const auto text = ReadWhole(places.config_file);
  if (text) {
    facts.configuration = ReadConfiguration(*text);
  } else {
    facts.config_error = std::strerror(errno);
  }
}

std::optional<pid_t> ReadPid(const std::string& path) {
  const auto text = ReadWhole(path);
  if (!text || text->empty() || text->find_first_not_of("0123456789\n") != std::string::npos)
    return std::nullopt;
  return static_cast<pid_t>(std::strtol(text->c_str(), nullptr, 10));
}

std::string LastOfLink(const std::string& log_file) {
  constexpr std::streamoff kTail = 20'000;
  std::ifstream file(log_file, std::ios::ate);
  if (!file) return {};
  file.seekg(std::max<std::streamoff>(0, file.tellg() - kTail));
  std::string last;
  for (std::string line; std::getline(file, line);)
    for (const char* text : kLinkTexts)
      if (line.find(text) != std::string::npos) last = line;
  return last;
}

LogFacts LookAtLog(const std::string& log_file, const Who& who) {
  LogFacts log;
  if (log_file.empty()) return log;
  const fs::path folder = fs::path(log_file).parent_path();
  struct stat folder_facts {};
  struct stat file {};
  log.folder_exists = stat(folder.c_str(), &folder_facts) == 0 && S_ISDIR(folder_facts.st_mode);
  log.may_write = stat(log_file.c_str(), &file) == 0
                      ? S_ISREG(file.st_mode) && Permits(file, who, kWrite)
                      : log.folder_exists && Permits(folder_facts, who, kWriteAndSearch);
  struct statvfs volume {};
  if (statvfs(folder.c_str(), &volume) == 0) {
    log.is_read_only = (volume.f_flag & ST_RDONLY) != 0;
    log.is_full = volume.f_bavail == 0;
  }
  log.last_of_link = LastOfLink(log_file);
  return log;
}

std::string GroupName(gid_t id) {
  const group* entry = getgrgid(id);
  return entry != nullptr ? entry->gr_name : std::to_string(id);
}

std::vector<Device> LookAtDevices(const std::string& folder, const Who& who,
                                  const std::vector<Process>& processes) {
  std::vector<Device> devices;
  std::error_code error;
  for (const auto& entry : fs::directory_iterator(folder, error)) {
    Device device{.path = entry.path(), .may_open = false, .group = {}, .others = {}};
    if (entry.path().filename().string().find(kDeviceName) == std::string::npos) continue;
    struct stat file {};
    if (stat(device.path.c_str(), &file) == 0) {
      device.may_open = Permits(file, who, kReadWrite);
      device.group = GroupName(file.st_gid);
    }
    for (const Process& holder : HoldersOf(processes, device.path))
      if (holder.name != kDaemonProgram && holder.name != kVirtualBus)
        device.others.push_back(holder);
    devices.push_back(device);
  }
  std::sort(devices.begin(), devices.end(),
            [](const Device& a, const Device& b) { return a.path < b.path; });
  return devices;
}

HubFacts AskHub(Hub& hub) {
  HubFacts facts;
  facts.name = NameOf(hub.Where());
  try {
    const Reply bus = hub.Try("GET", "/api/bus");
    facts.status = bus.status;
    if (bus.status != 200) return facts;
    facts.bus = bus.data;
    facts.cards = hub.Try("GET", "/api/cards").data;
  } catch (const Failure& failure) {
    facts.failure = failure.what();
  }
  return facts;
}

void LookForPage(const std::vector<Socket>& sockets, const std::vector<Process>& processes,
                 HubFacts& hub) {
  const Socket* listener = ListenerOn(sockets, kPagePort);
  if (listener == nullptr) return;
  hub.page_is_open = true;
  for (const Process& owner : OwnersOf(processes, listener->inode))
    if (owner.name != kHubProgram) hub.page_owner = owner.Text();
}

std::vector<PortFacts> LookAtPorts(const Facts& facts, const std::vector<Socket>& sockets,
                                   const std::vector<Process>& processes,
                                   std::chrono::milliseconds patience) {
  std::vector<PortFacts> ports(facts.configuration.ports.size());
  const PortsView view{.sockets = sockets,
                       .processes = processes,
                       .daemons = facts.daemons,
                       .hub_program = kHubProgram};
  // Side by side: each may take its time to greet.
  std::vector<std::jthread> threads;
  for (size_t i = 0; i < ports.size(); ++i)
    threads.emplace_back([&view, &port = ports[i], setting = facts.configuration.ports[i],
                          patience] { port = LookAtPort(view, setting, patience); });
  threads.clear();
  return ports;
}

}  // namespace

Facts Look(const Places& places, Hub& hub) {
  Facts facts;
  facts.now = std::chrono::floor<std::chrono::seconds>(std::chrono::system_clock::now());
  ReadConfigFile(places, facts);
  const std::vector<Process> processes = ListProcesses();
  facts.daemons = Named(processes, kDaemonProgram);
  facts.pid_file = places.pid_file;
  facts.pid = ReadPid(places.pid_file);
  facts.daemon_user = facts.daemons.empty() ? WhoIs(kDaemonUser) : WhoRuns(facts.daemons.front());
  facts.log = LookAtLog(facts.configuration.log_file, facts.daemon_user);
  facts.devices = LookAtDevices(places.device_folder, facts.daemon_user, processes);
  facts.hub = AskHub(hub);
  facts.hub.processes = Named(processes, kHubProgram);
  const std::vector<Socket> sockets = AllSockets();
  LookForPage(sockets, processes, facts.hub);
  facts.ports = LookAtPorts(facts, sockets, processes, places.greeting_patience);
  return facts;
}

}  // namespace ctl::doctor
