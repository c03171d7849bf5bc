// The daemon's configuration as the daemon reads it, and what in it will not do what was meant:
// the daemon passes over whatever it does not know without a word. Pure.
#pragma once

#include <string>
#include <vector>

#include "doctor/Finding.h"

namespace ctl::doctor {

struct PortSetting {
  std::string name;  // "CAE", "IO", "MON"
  int number = 0;
};

struct Configuration {
  std::string log_file;  // empty: none
  bool polls = false;
  bool discovers = false;
  std::vector<PortSetting> ports;  // in the order of the table of names; only those that are given
  Findings findings;               // with the line; none: it is well
};

Configuration ReadConfiguration(const std::string& text);

}  // namespace ctl::doctor
