// Programs of this machine, as /proc shows them: who runs, who has what open. Of programs of
// other users root alone sees what they have open.
#pragma once

#include <sys/stat.h>
#include <sys/types.h>

#include <cstdint>
#include <string>
#include <vector>

namespace ctl::doctor {

struct Process {
  pid_t pid = 0;
  pid_t parent = 0;
  std::string name;

  std::string Text() const { return name + " (process " + std::to_string(pid) + ")"; }
};

// Programs in the network namespace that this one is in, but for this one.
std::vector<Process> ListProcesses();
// Without children of such a program: they are about to become another.
std::vector<Process> Named(const std::vector<Process>& processes, const std::string& name);

// Those of them that have the file of this name open.
std::vector<Process> HoldersOf(const std::vector<Process>& processes, const std::string& path);

// Those of them that have the socket with this inode.
std::vector<Process> OwnersOf(const std::vector<Process>& processes, uint64_t inode);

// With whose rights something is done.
struct Who {
  std::string name;  // of the user
  uid_t user = 0;
  std::vector<gid_t> groups;
};

// As the process runs, or the user of that name; this program itself where there is neither.
Who WhoRuns(const Process& process);
Who WhoIs(const std::string& user);

// The bits of the mode allow all of `wanted` (4 read, 2 write, 1 search).
bool Permits(const struct stat& file, const Who& who, unsigned wanted);

}  // namespace ctl::doctor
