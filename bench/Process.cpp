#include "Process.h"

#include <fcntl.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <utility>

#include "kit/Proc.h"

namespace {

[[noreturn]] void BecomeProgram(std::vector<std::string>& words, int output) {
  const int nothing = open("/dev/null", O_RDWR);
  dup2(nothing, STDIN_FILENO);
  dup2(output < 0 ? nothing : output, STDOUT_FILENO);
  std::vector<char*> arguments;
  for (std::string& word : words) arguments.push_back(word.data());
  arguments.push_back(nullptr);
  execvp(arguments[0], arguments.data());
  _exit(127);
}

}  // namespace

Process::Process(std::vector<std::string> words, int output) : pid_(fork()) {
  if (pid_ < 0) throw std::runtime_error("cannot start " + words[0]);
  if (pid_ == 0) BecomeProgram(words, output);
}

Process::Process(Process&& other) noexcept : pid_(std::exchange(other.pid_, 0)) {}

Process& Process::operator=(Process&& other) noexcept {
  std::swap(pid_, other.pid_);
  return *this;
}

void Process::Hold() {
  kill(pid_, SIGSTOP);
  waitpid(pid_, nullptr, WUNTRACED);
}

void Process::Release() {
  kill(pid_, SIGCONT);
  waitpid(pid_, nullptr, WCONTINUED);
}

void Process::End() {
  if (pid_ == 0) return;
  kill(pid_, SIGCONT);
  kill(pid_, SIGTERM);
  AwaitExit();
}

void Process::AwaitExit() { waitpid(std::exchange(pid_, 0), nullptr, 0); }

Usage Process::Used() const {
  Usage used;
  for (const auto& thread : std::filesystem::directory_iterator(ProcPath(pid_, "task"))) {
    double nanoseconds = 0;
    std::ifstream(thread.path() / "schedstat") >> nanoseconds;
    used.seconds += nanoseconds / 1e9;
    used.wakeups += StatusNumber(thread.path() / "status", "voluntary_ctxt_switches:");
  }
  return used;
}

int Process::Threads() const { return ThreadsOf(pid_); }

long Process::ResidentKilobytes() const { return ResidentKilobytesOf(pid_); }
