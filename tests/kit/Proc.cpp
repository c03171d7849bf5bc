#include "kit/Proc.h"

#include <cstdlib>
#include <filesystem>
#include <fstream>

#include "kit/Files.h"

namespace fs = std::filesystem;

std::string ProcPath(pid_t pid, const std::string& name) {
  return "/proc/" + std::to_string(pid) + "/" + name;
}

long StatusNumber(const std::string& path, const std::string& word) {
  std::ifstream file(path);
  for (std::string seen; file >> seen;) {
    long number = 0;
    if (seen == word && file >> number) return number;
  }
  return 0;
}

int ThreadsOf(pid_t pid) {
  return static_cast<int>(StatusNumber(ProcPath(pid, "status"), "Threads:"));
}

long ResidentKilobytesOf(pid_t pid) { return StatusNumber(ProcPath(pid, "status"), "VmRSS:"); }

std::vector<pid_t> ChildrenOf(pid_t pid) {
  std::vector<pid_t> children;
  std::error_code gone;
  for (const auto& entry : fs::directory_iterator("/proc", gone)) {
    const pid_t child = std::atoi(entry.path().filename().c_str());
    if (child <= 0) continue;
    const std::string stat = ReadFile(ProcPath(child, "stat"));
    const std::size_t name_end = stat.rfind(") ");
    if (name_end == std::string::npos) continue;
    if (std::atoi(stat.c_str() + name_end + 4) == pid) children.push_back(child);
  }
  return children;
}

std::vector<std::string> DescriptorsOf(pid_t pid) {
  std::vector<std::string> targets;
  std::error_code gone;
  for (const auto& entry : fs::directory_iterator(ProcPath(pid, "fd"), gone))
    targets.push_back(fs::read_symlink(entry.path(), gone).string());
  return targets;
}

bool HasSanitizerReport(const std::string& errors) {
  return errors.find("Sanitizer") != std::string::npos ||
         errors.find("runtime error:") != std::string::npos;
}
