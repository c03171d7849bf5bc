#include "doctor/Checks.h"

#include <algorithm>
#include <cerrno>
#include <cstring>

#include "base/Times.h"

namespace ctl::doctor {

namespace {

constexpr int kFirstYear = 2024;
constexpr int kMostDevice = 99;  // the daemon finds devices up to this number
constexpr char kStart[] = "systemctl start qelm; \"journalctl -t qelm\" has its last words";
constexpr char kMendAndStart[] =
    "mend the configuration, then: systemctl start qelm; \"journalctl -t qelm\" has its last words";
constexpr char kRestart[] = "systemctl restart qelm";

constexpr Check kChecks[] = {
    {"clock", &CheckClock},     {"configuration", &CheckConfiguration},
    {"log", &CheckLog},         {"daemon", &CheckDaemon},
    {"adapter", &CheckAdapter}, {"ports", &CheckPorts},
    {"hub", &CheckHub},         {"page", &CheckPage},
    {"broker", &CheckBroker},   {"cards", &CheckCards},
};

std::string PidsOf(const std::vector<Process>& processes) {
  std::string text;
  for (const Process& process : processes)
    text += (text.empty() ? "" : ", ") + std::to_string(process.pid);
  return text;
}

std::string FolderOf(const std::string& path) { return path.substr(0, path.rfind('/')); }

// The number behind "ttyUSB"; -1: none.
int DeviceNumber(const std::string& path) {
  const size_t digits = path.find_last_not_of("0123456789") + 1;
  return digits == path.size() ? -1 : std::stoi(path.substr(digits).substr(0, 6));
}

bool HasGoodConfiguration(const Facts& facts) {
  const Findings& findings = facts.configuration.findings;
  return facts.config_error.empty() &&
         std::none_of(findings.begin(), findings.end(),
                      [](const Finding& finding) { return finding.verdict == Verdict::kWrong; });
}

Finding LookAtDevice(const Device& device, const Who& user) {
  if (DeviceNumber(device.path) > kMostDevice)
    return {Verdict::kWrong, device.path + ": the daemon looks at numbers up to 99 only",
            "unplug what is not used, and the adapter too, and plug it in again"};
  if (!device.may_open)
    return {Verdict::kWrong,
            device.path + ": the daemon, which runs as " + user.name + ", may not open it",
            "adduser " + user.name + " " + device.group + "; " + kRestart};
  if (!device.others.empty())
    return {Verdict::kWrong,
            device.path + " is also open in " + device.others.front().Text() +
                ", which takes the adapter's answers",
            "end that program"};
  return {Verdict::kWell, device.path + " may be opened", {}};
}

// What the hub or else the log says of the adapter.
Findings LookAtLink(const Facts& facts) {
  if (facts.daemons.empty())
    return {{Verdict::kUnseen, "whether the adapter answers: the daemon does not run", {}}};
  const std::string& log = facts.log.last_of_link;
  if (log.find("hardware found on ") != std::string::npos)
    return {{Verdict::kWell, "it answers: " + log, {}}};
  if (log.empty())
    return {{Verdict::kUnseen, "whether the adapter answers: the log cannot be read, or is empty",
             "run qelmctl doctor as root"}};
  return {{Verdict::kWrong, "it does not answer: " + log,
           "look at the adapter's power and cable; unplug it and plug it in again"}};
}

}  // namespace

std::span<const Check> Checks() { return kChecks; }

Findings CheckClock(const Facts& facts) {
  const std::chrono::year_month_day day(std::chrono::floor<std::chrono::days>(facts.now));
  const std::string text = FormatLocal(facts.now);
  if (static_cast<int>(day.year()) >= kFirstYear) return {{Verdict::kWell, text, {}}};
  return {
      {Verdict::kWrong, "it is " + text + ", they say: history and certificates go by the clock",
       "timedatectl set-ntp true, or set it by hand: timedatectl set-time \"2026-11-21 12:00\""}};
}

Findings CheckConfiguration(const Facts& facts) {
  // What this user may not read, the daemon perhaps may.
  if (facts.config_error == std::strerror(EACCES))
    return {{Verdict::kUnseen, facts.config_file + " may not be read by you",
             "run qelmctl doctor as root"}};
  if (!facts.config_error.empty())
    return {{Verdict::kWrong,
             facts.config_file + ": " + facts.config_error + "; the daemon ends without it",
             "write it after the example in \"man qelmconf.xml\""}};
  Findings findings = facts.configuration.findings;
  for (Finding& finding : findings) finding.found.insert(0, facts.config_file + ": ");
  if (!facts.configuration.polls)
    findings.push_back({Verdict::kNote, "inputs are not polled from the start",
                        "<InitPollState Action=\"True\"/>, or: qelmctl polling on"});
  if (!facts.configuration.discovers)
    findings.push_back({Verdict::kNote, "cards are not searched at the start",
                        "<AutoDiscover Action=\"True\"/>, or: qelmctl discover"});
  if (findings.empty()) findings.push_back({Verdict::kWell, facts.config_file, {}});
  return findings;
}

Findings CheckLog(const Facts& facts) {
  const std::string& file = facts.configuration.log_file;
  const LogFacts& log = facts.log;
  const std::string folder = FolderOf(file);
  if (file.empty()) return {{Verdict::kUnseen, "the configuration names none", {}}};
  if (!file.starts_with('/')) return {{Verdict::kUnseen, "its path has no slash in front", {}}};
  if (!log.folder_exists)
    return {{Verdict::kWrong, "the folder " + folder + " is not there: every event is lost",
             "install -d -o " + facts.daemon_user.name + " " + folder}};
  if (log.is_read_only)
    return {{Verdict::kWrong, folder + " is on a read-only volume: every event is lost",
             "mount it writable, or name another file in Debuglog"}};
  if (!log.may_write)
    return {{Verdict::kWrong,
             "the daemon, which runs as " + facts.daemon_user.name + ", may not write " + file,
             "chown " + facts.daemon_user.name + " " + file}};
  if (log.is_full)
    return {{Verdict::kWrong, "the volume of " + folder + " is full: events are lost",
             "make room; \"journalctl --vacuum-size=50M\" may help"}};
  return {{Verdict::kWell, file, {}}};
}

Findings CheckDaemon(const Facts& facts) {
  if (facts.daemons.empty())
    return {{Verdict::kWrong, "qelm does not run",
             HasGoodConfiguration(facts) ? kStart : kMendAndStart}};
  if (facts.daemons.size() > 1)
    return {{Verdict::kWrong,
             "more than one qelm runs (processes " + PidsOf(facts.daemons) +
                 "): one of them has no ports",
             "see whose they are, and end the one too many; then: systemctl restart qelm"}};
  const std::string process = facts.daemons.front().Text();
  if (!facts.pid)
    return {{Verdict::kWrong,
             process + " runs, but " + facts.pid_file + " is missing or holds no number",
             kRestart}};
  if (*facts.pid != facts.daemons.front().pid)
    return {{Verdict::kWrong,
             facts.pid_file + " names the process " + std::to_string(*facts.pid) + ", but it is " +
                 process,
             kRestart}};
  return {{Verdict::kWell, process + " as " + facts.daemon_user.name, {}}};
}

Findings CheckAdapter(const Facts& facts) {
  if (facts.devices.empty())
    return {{Verdict::kWrong, "there is no /dev/ttyUSB: the adapter is not plugged in",
             "plug it in; \"dmesg\" says what the kernel found. Without hardware: qelm-bus --link "
             "/dev/ttyUSB0"}};
  Findings findings;
  for (const Device& device : facts.devices)
    findings.push_back(LookAtDevice(device, facts.daemon_user));
  const Findings link = LookAtLink(facts);
  findings.insert(findings.end(), link.begin(), link.end());
  return findings;
}

}  // namespace ctl::doctor
