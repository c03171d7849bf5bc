#include "DaemonProcess.h"

#include <fcntl.h>
#include <linux/close_range.h>
#include <signal.h>
#include <sys/prctl.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>

#include "kit/Files.h"
#include "kit/Proc.h"
#include "kit/SleepControl.h"

namespace {

// The daemon built beside these tests, or one for another machine, which an emulator runs.
const char* BinaryOfAnotherMachine() { return std::getenv("QELM_UNDER_TEST"); }

std::string Binary() {
  return BinaryOfAnotherMachine() != nullptr ? BinaryOfAnotherMachine() : QELM_BINARY;
}

void SendTo(const char* path, int target) {
  const int fd = open(path, O_WRONLY | O_CREAT | O_TRUNC | O_APPEND, 0600);
  dup2(fd, target);
  close(fd);
}

void SetLimits() {
  rlimit core{0, 0};
  setrlimit(RLIMIT_CORE, &core);
  rlimit files{};
  getrlimit(RLIMIT_NOFILE, &files);
  files.rlim_cur = files.rlim_max;
  setrlimit(RLIMIT_NOFILE, &files);
}

void SetEnvironment(const LaunchOptions& options) {
  const std::string system_path = "/usr/bin:/bin";
  setenv("PATH", (options.quick ? WithShortSleep(system_path) : system_path).c_str(), 1);
  setenv("QELM_TEST_SLEEP_DIVISOR", "20", 1);
  setenv("QELM_TEST_SLEEP_ANSWER", "400", 1);
  setenv("TSAN_OPTIONS", "atexit_sleep_ms=100", 1);
  for (const auto& [name, value] : options.environment) setenv(name.c_str(), value.c_str(), 1);
}

void SetDescriptors(int extra) {
  dup2(open("/dev/null", O_RDONLY), STDIN_FILENO);
  SendTo(kStdout, STDOUT_FILENO);
  SendTo(kStderr, STDERR_FILENO);
  close_range(3, ~0U, CLOSE_RANGE_CLOEXEC);
  for (int i = 0; i < extra; ++i) (void)dup(STDIN_FILENO);
}

[[noreturn]] void Become(const LaunchOptions& options) {
  for (int number = 1; number < SIGRTMIN; ++number) signal(number, SIG_DFL);
  SetLimits();
  SetDescriptors(options.extra_descriptors);
  SetEnvironment(options);
  std::string binary = Binary();
  std::vector<char*> command{binary.data()};
  for (const auto& argument : options.arguments) {
    command.push_back(const_cast<char*>(argument.c_str()));
  }
  command.push_back(nullptr);
  execv(binary.c_str(), command.data());
  _exit(127);
}

}  // namespace

int DaemonProcess::Launch(LaunchOptions options) {
  if (options.quick && is_patient_ && BinaryOfAnotherMachine() == nullptr)
    options.environment.merge(WithPatience());
  prctl(PR_SET_CHILD_SUBREAPER, 1);
  const pid_t launcher = fork();
  if (launcher == 0) Become(options);
  int status = -1;
  waitpid(launcher, &status, 0);
  return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

bool DaemonProcess::WaitForPid() {
  return WaitUntil([this] {
    pid_ = std::atoi(ReadFile(kPidFile).c_str());
    siginfo_t info{};
    return pid_ > 1 &&
           waitid(P_PID, static_cast<id_t>(pid_), &info, WEXITED | WNOHANG | WNOWAIT) == 0;
  });
}

std::optional<int> DaemonProcess::WaitForEnd(std::chrono::milliseconds bound) {
  int status = 0;
  if (!WaitUntil([&] { return waitpid(pid_, &status, WNOHANG) > 0; }, bound)) return std::nullopt;
  pid_ = -1;
  return status;
}

// While the main thread creates another, a signal goes to one that waits in accept. There the
// thread sanitizer holds it back until the call ends, for ever where no client comes.
std::optional<int> DaemonProcess::EndBy(int signal) {
  for (int again = Instrumented() ? 10 : 0; again > 0; --again) {
    Kill(signal);
    if (const auto status = WaitForEnd(std::chrono::seconds(5))) return status;
  }
  Kill(signal);
  return WaitForEnd();
}

void DaemonProcess::Kill(int signal) const {
  if (pid_ > 1) kill(pid_, signal);
}

void DaemonProcess::EndOrphans() {
  // The children of one that ends become ours in turn.
  for (auto ours = ChildrenOf(getpid()); !ours.empty(); ours = ChildrenOf(getpid())) {
    for (pid_t child : ours) {
      kill(child, SIGKILL);
      waitpid(child, nullptr, 0);
    }
  }
}

bool DaemonProcess::Running() const {
  siginfo_t info{};
  return pid_ > 1 &&
         waitid(P_PID, static_cast<id_t>(pid_), &info, WEXITED | WNOHANG | WNOWAIT) == 0 &&
         info.si_pid == 0;
}

std::string DaemonProcess::Proc(const std::string& name) const {
  return ReadFile(ProcPath(pid_, name));
}

std::vector<std::string> DaemonProcess::Descriptors() const { return DescriptorsOf(pid_); }

bool DaemonProcess::Instrumented() const {
  const std::string maps = Proc("maps");
  for (const char* sign : {"/libtsan", "/libasan", "/qemu-", "/valgrind/"})
    if (maps.find(sign) != std::string::npos) return true;
  return false;
}

int DaemonProcess::Threads() const { return ThreadsOf(pid_); }

long DaemonProcess::ResidentKilobytes() const { return ResidentKilobytesOf(pid_); }

std::vector<pid_t> DaemonProcess::Children() const { return ChildrenOf(pid_); }
