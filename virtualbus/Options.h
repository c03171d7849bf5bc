// The command line.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace virtualbus {

struct Options {
  std::vector<std::string> cards;  // "ADDR=KIND"
  std::string bus_file;
  std::string link;
  std::string control;
  std::string record;
  std::string replay;
  std::vector<std::string> lines;  // control lines to begin with
  long baud = 0;
  uint32_t seed = 1;
  bool fast = false;
  bool plain = false;
};

// Nothing when the program is to end at once, with the status given.
std::optional<Options> ReadOptions(int argc, char** argv, int& status);

}  // namespace virtualbus
