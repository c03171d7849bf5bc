#include "doctor/Processes.h"

#include <grp.h>
#include <pwd.h>
#include <unistd.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <functional>
#include <sstream>
#include <system_error>

namespace ctl::doctor {

namespace fs = std::filesystem;

namespace {

std::string Proc(pid_t pid, const char* name) {
  return "/proc/" + std::to_string(pid) + "/" + name;
}

std::string ReadLine(const std::string& path) {
  std::ifstream file(path);
  std::string line;
  std::getline(file, line);
  return line;
}

// What cannot be read may be here as well.
bool IsHere(pid_t pid) {
  std::error_code error;
  const fs::path there = fs::read_symlink(Proc(pid, "ns/net"), error);
  return error || there == fs::read_symlink("/proc/self/ns/net", error);
}

using Matches = std::function<bool(const struct stat& file)>;

bool HasOpen(const Process& process, const Matches& matches) {
  std::error_code error;
  for (fs::directory_iterator it(Proc(process.pid, "fd"), error), end; !error && it != end;
       it.increment(error)) {
    struct stat file {};
    if (stat(it->path().c_str(), &file) == 0 && matches(file)) return true;
  }
  return false;
}

std::vector<Process> With(const std::vector<Process>& processes, const Matches& matches) {
  std::vector<Process> found;
  std::copy_if(processes.begin(), processes.end(), std::back_inserter(found),
               [&](const Process& process) { return HasOpen(process, matches); });
  return found;
}

std::string NameOfUser(uid_t user) {
  const passwd* entry = getpwuid(user);
  return entry != nullptr ? entry->pw_name : std::to_string(user);
}

// The numbers behind a word of a status file.
std::vector<unsigned> StatusNumbers(pid_t pid, const std::string& word) {
  std::ifstream status(Proc(pid, "status"));
  std::vector<unsigned> numbers;
  for (std::string line; std::getline(status, line);) {
    if (!line.starts_with(word)) continue;
    std::istringstream rest(line.substr(word.size()));
    for (unsigned number = 0; rest >> number;) numbers.push_back(number);
  }
  return numbers;
}

}  // namespace

std::vector<Process> ListProcesses() {
  std::vector<Process> processes;
  std::error_code error;
  for (const auto& entry : fs::directory_iterator("/proc", error)) {
    const std::string name = entry.path().filename();
    if (name.find_first_not_of("0123456789") != std::string::npos) continue;
    const pid_t pid = std::stoi(name);
    if (pid == getpid() || !IsHere(pid)) continue;
    const std::string program = ReadLine(Proc(pid, "comm"));
    // One that has ended and was not collected yet has nothing open and does nothing.
    const bool has_ended = ReadLine(Proc(pid, "cmdline")).empty();
    const std::vector<unsigned> parent = StatusNumbers(pid, "PPid:");
    if (!program.empty() && !has_ended && !parent.empty())
      processes.push_back({pid, static_cast<pid_t>(parent.front()), program});
  }
  std::sort(processes.begin(), processes.end(),
            [](const Process& a, const Process& b) { return a.pid < b.pid; });
  return processes;
}

std::vector<Process> Named(const std::vector<Process>& processes, const std::string& name) {
  std::vector<Process> found;
  std::copy_if(processes.begin(), processes.end(), std::back_inserter(found),
               [&](const Process& process) { return process.name == name; });
  const std::vector<Process> all = found;
  std::erase_if(found, [&](const Process& process) {
    return std::any_of(all.begin(), all.end(),
                       [&](const Process& other) { return other.pid == process.parent; });
  });
  return found;
}

std::vector<Process> HoldersOf(const std::vector<Process>& processes, const std::string& path) {
  struct stat wanted {};
  if (stat(path.c_str(), &wanted) != 0) return {};
  return With(processes, [&](const struct stat& file) {
    return file.st_dev == wanted.st_dev && file.st_ino == wanted.st_ino;
  });
}

std::vector<Process> OwnersOf(const std::vector<Process>& processes, uint64_t inode) {
  if (inode == 0) return {};
  return With(processes, [&](const struct stat& file) {
    return S_ISSOCK(file.st_mode) && file.st_ino == inode;
  });
}

Who WhoRuns(const Process& process) {
  const std::vector<unsigned> users = StatusNumbers(process.pid, "Uid:");
  const std::vector<unsigned> groups = StatusNumbers(process.pid, "Gid:");
  if (users.size() < 2 || groups.size() < 2) return WhoIs({});
  Who who{.name = NameOfUser(users[1]), .user = users[1], .groups = {groups[1]}};  // effective ones
  for (const unsigned group : StatusNumbers(process.pid, "Groups:")) who.groups.push_back(group);
  return who;
}

Who WhoIs(const std::string& user) {
  const passwd* entry = user.empty() ? nullptr : getpwnam(user.c_str());
  if (entry == nullptr) entry = getpwuid(geteuid());
  if (entry == nullptr) return {.name = std::to_string(geteuid()), .user = geteuid(), .groups = {}};
  Who who{.name = entry->pw_name, .user = entry->pw_uid, .groups = {}};
  int count = 0;
  getgrouplist(entry->pw_name, entry->pw_gid, nullptr, &count);
  who.groups.resize(static_cast<size_t>(count));
  getgrouplist(who.name.c_str(), entry->pw_gid, who.groups.data(), &count);
  return who;
}

bool Permits(const struct stat& file, const Who& who, unsigned wanted) {
  if (who.user == 0) return true;
  const bool is_member =
      std::find(who.groups.begin(), who.groups.end(), file.st_gid) != who.groups.end();
  const unsigned shift = file.st_uid == who.user ? 6 : is_member ? 3 : 0;
  return ((file.st_mode >> shift) & wanted) == wanted;
}

}  // namespace ctl::doctor
