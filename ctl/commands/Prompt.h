// What is asked for on a terminal, or read from standard input where that is none.
#pragma once

#include <optional>
#include <string>

namespace ctl {

// A line with editing and history where it is a terminal; nothing at its end.
class LineEditor {
 public:
  explicit LineEditor(std::string history_file);
  ~LineEditor();
  LineEditor(const LineEditor&) = delete;
  LineEditor& operator=(const LineEditor&) = delete;

  std::optional<std::string> Read(const std::string& prompt);

 private:
  std::string history_file_;  // empty: nothing is kept
};

// Without echo, twice where it is new. Throws Failure(kUsage).
std::string AskPassword(const std::string& account);

}  // namespace ctl
