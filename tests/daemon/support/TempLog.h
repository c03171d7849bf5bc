// A log file of the test's own, and what was written to it.
#pragma once

#include <algorithm>
#include <fstream>
#include <string>
#include <vector>

#include "kit/TempDir.h"
#include "kit/Wait.h"
#include "runtime/Logger.h"

class TempLog {
 public:
  LOGGER Logger() const {
    LOGGER logger;
    logger.LogFile = Path();
    return logger;
  }

  std::string Path() const { return dir_.Path("log"); }

  std::vector<std::string> WholeLines() const {
    std::ifstream file(Path());
    std::vector<std::string> lines;
    for (std::string line; std::getline(file, line);) lines.push_back(line);
    return lines;
  }

  // The lines without their time: "[INF] text".
  std::vector<std::string> Lines() const {
    constexpr std::size_t kTimeLength = 20;
    std::vector<std::string> lines = WholeLines();
    for (std::string& line : lines) line.erase(0, kTimeLength);
    return lines;
  }

  bool Has(const std::string& line) const { return Count(line) > 0; }

  long Count(const std::string& line) const {
    const std::vector<std::string> lines = Lines();
    return std::count(lines.begin(), lines.end(), line);
  }

  bool WaitFor(const std::string& line) const {
    return WaitUntil([&] { return Has(line); });
  }

 private:
  TempDir dir_;
};
