// qelmctl as a process: what it prints, and how it ends.
#pragma once

#include <gtest/gtest.h>

#include <map>
#include <string>
#include <vector>

#include "kit/Place.h"

struct Outcome {
  int status = -1;
  std::string out;
  std::string err;
};

// With what stands on its standard input, which is no terminal, and with more in its environment.
Outcome RunCtl(const std::vector<std::string>& arguments, const std::string& input = {},
               const std::map<std::string, std::string>& environment = {});

// On a terminal of its own: what is typed and, all together, what it shows.
Outcome RunCtlOnTerminal(const std::vector<std::string>& arguments, const std::string& typed,
                         const std::map<std::string, std::string>& environment = {});
