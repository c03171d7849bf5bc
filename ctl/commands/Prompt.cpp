#include "commands/Prompt.h"

#include <editline/readline.h>
#include <sys/stat.h>
#include <termios.h>
#include <unistd.h>

#include <cstdlib>
#include <iostream>
#include <memory>
#include <utility>

#include "base/Failure.h"

namespace ctl {

namespace {

constexpr int kMostHistory = 1000;

bool IsTerminal() { return isatty(STDIN_FILENO) != 0 && isatty(STDOUT_FILENO) != 0; }

// Nobody sees what is typed while it lives. What was typed before it is dropped.
class NoEcho {
 public:
  NoEcho() {
    tcgetattr(STDIN_FILENO, &before_);
    termios silent = before_;
    silent.c_lflag &= ~static_cast<tcflag_t>(ECHO);
    tcsetattr(STDIN_FILENO, TCSAFLUSH, &silent);
  }
  ~NoEcho() { tcsetattr(STDIN_FILENO, TCSAFLUSH, &before_); }
  NoEcho(const NoEcho&) = delete;
  NoEcho& operator=(const NoEcho&) = delete;

 private:
  termios before_{};
};

std::string ReadSilently(const std::string& prompt) {
  std::string line;
  {
    const NoEcho silence;
    std::cerr << prompt << std::flush;
    std::getline(std::cin, line);
  }
  std::cerr << '\n';
  return line;
}

}  // namespace

LineEditor::LineEditor(std::string history_file) : history_file_(std::move(history_file)) {
  if (!IsTerminal()) history_file_.clear();
  if (history_file_.empty()) return;
  using_history();
  stifle_history(kMostHistory);
  read_history(history_file_.c_str());
}

LineEditor::~LineEditor() {
  if (history_file_.empty()) return;
  umask(S_IRWXG | S_IRWXO);
  write_history(history_file_.c_str());
}

std::optional<std::string> LineEditor::Read(const std::string& prompt) {
  std::string line;
  if (!IsTerminal()) {
    if (!std::getline(std::cin, line)) return std::nullopt;
    if (line.ends_with('\r')) line.pop_back();
    return line;
  }
  const std::unique_ptr<char, decltype(&std::free)> typed(readline(prompt.c_str()), &std::free);
  if (typed == nullptr) {
    std::cout << '\n';
    return std::nullopt;
  }
  line = typed.get();
  if (!line.empty()) add_history(line.c_str());
  return line;
}

std::string AskPassword(const std::string& account) {
  std::string password;
  if (isatty(STDIN_FILENO) != 0) {
    password = ReadSilently("New password for " + account + ": ");
    if (ReadSilently("Again: ") != password)
      throw Failure(kUsage, "the two are not the same; nothing was changed");
  } else {
    std::getline(std::cin, password);
    if (password.ends_with('\r')) password.pop_back();
  }
  if (password.empty()) throw Failure(kUsage, "no password was given; nothing was changed");
  return password;
}

}  // namespace ctl
