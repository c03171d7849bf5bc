#include "Ctl.h"

#include <fcntl.h>
#include <poll.h>
#include <pty.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cstdlib>

#include "kit/Files.h"
#include "kit/TempDir.h"
#include "kit/Wait.h"

namespace {

void Become(std::vector<std::string> arguments,
            const std::map<std::string, std::string>& environment) {
  for (const char* name : {"QELMCTL_TOKEN", "NO_COLOR"}) unsetenv(name);
  for (const auto& [name, value] : environment) setenv(name.c_str(), value.c_str(), 1);
  arguments.insert(arguments.begin(), QELMCTL);
  std::vector<char*> words;
  for (std::string& argument : arguments) words.push_back(argument.data());
  words.push_back(nullptr);
  execv(QELMCTL, words.data());
  _exit(127);
}

int StatusOf(pid_t pid) {
  int status = 0;
  waitpid(pid, &status, 0);
  return WIFEXITED(status) ? WEXITSTATUS(status) : -WTERMSIG(status);
}

void Redirect(const std::string& file, int flags, int to) {
  const int fd = open(file.c_str(), flags, 0600);
  dup2(fd, to);
  close(fd);
}

// Nothing where it says nothing more, or ends.
ssize_t ReadInTime(int terminal, std::array<char, 4096>& bytes) {
  constexpr std::chrono::milliseconds kBound = kPatience;
  pollfd readable{.fd = terminal, .events = POLLIN, .revents = 0};
  if (poll(&readable, 1, static_cast<int>(kBound.count())) <= 0) return 0;
  return read(terminal, bytes.data(), bytes.size());
}

}  // namespace

Outcome RunCtl(const std::vector<std::string>& arguments, const std::string& input,
               const std::map<std::string, std::string>& environment) {
  const TempDir folder;
  const std::string in = folder.Write("in", input);
  const std::string out = folder.Path("out");
  const std::string err = folder.Path("err");
  const pid_t pid = fork();
  if (pid == 0) {
    Redirect(in, O_RDONLY, STDIN_FILENO);
    Redirect(out, O_WRONLY | O_CREAT, STDOUT_FILENO);
    Redirect(err, O_WRONLY | O_CREAT, STDERR_FILENO);
    Become(arguments, environment);
  }
  const int status = StatusOf(pid);
  return {.status = status, .out = ReadFile(out), .err = ReadFile(err)};
}

Outcome RunCtlOnTerminal(const std::vector<std::string>& arguments, const std::string& typed,
                         const std::map<std::string, std::string>& environment) {
  int terminal = -1;
  const pid_t pid = forkpty(&terminal, nullptr, nullptr, nullptr);
  if (pid == 0) Become(arguments, environment);
  std::string shown;
  size_t sent = 0;
  std::array<char, 4096> bytes{};
  // A line is typed when it is asked for: behind a prompt.
  for (ssize_t count = 0; (count = ReadInTime(terminal, bytes)) > 0;) {
    shown.append(bytes.data(), static_cast<size_t>(count));
    const bool is_asked = shown.ends_with("> ") || shown.ends_with(": ");
    const size_t end = typed.find('\n', sent);
    if (!is_asked || end == std::string::npos) continue;
    const std::string line = typed.substr(sent, end + 1 - sent);
    sent = end + 1;
    if (write(terminal, line.data(), line.size()) < 0) break;
  }
  close(terminal);
  return {.status = StatusOf(pid), .out = shown, .err = {}};
}
