// The daemon as a process: its launch, its end, and what /proc says of it.
// The test program is a subreaper, so that the detached daemon becomes its
// child and its exit status can be read.
#pragma once

#include <sys/types.h>

#include <chrono>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "kit/Wait.h"

struct LaunchOptions {
  bool quick = true;                     // shortened fixed waits
  int extra_descriptors = 0;             // open ones that the daemon inherits
  std::vector<std::string> arguments{};  // of the command line
  std::map<std::string, std::string> environment{};
};

class DaemonProcess {
 public:
  // Where a process of its own answers on the line. Quick launches only.
  void BePatient() { is_patient_ = true; }
  // Starts the program and returns the exit status of the process that detaches from it.
  int Launch(LaunchOptions options);
  // Waits for the pid file, and for the process it names to be our child.
  bool WaitForPid();
  // Waits for the end; the wait status as waitpid gives it.
  std::optional<int> WaitForEnd(std::chrono::milliseconds bound = kPatience);
  // Sends a signal that ends it, and waits for the end.
  std::optional<int> EndBy(int signal);
  void Kill(int signal) const;
  // Ends the processes that the daemon left behind in mid-wait.
  static void EndOrphans();

  pid_t Pid() const { return pid_; }
  bool Running() const;

  std::string Proc(const std::string& name) const;  // content of /proc/<pid>/<name>
  std::vector<std::string> Descriptors() const;     // what each open one points at
  bool Instrumented() const;  // threads and memory of a sanitizer or an emulator come on top
  int Threads() const;
  long ResidentKilobytes() const;
  std::vector<pid_t> Children() const;

 private:
  pid_t pid_ = -1;
  bool is_patient_ = false;
};

inline constexpr char kPidFile[] = "/run/qelm/qelm.pid";
inline constexpr char kStdout[] = "/run/test/stdout";
inline constexpr char kStderr[] = "/run/test/stderr";
