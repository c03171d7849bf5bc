// Finds out the facts: reads files and /proc, asks the three ports for their greetings and the hub
// how it is. Changes nothing. A port that nobody uses is used for a moment, and is closed for some
// seconds after it, as after every client.
#pragma once

#include <chrono>
#include <string>

#include "client/Hub.h"
#include "doctor/Facts.h"

namespace ctl::doctor {

struct Places {
  std::string config_file = "/etc/qelm/qelmconf.xml";
  std::string pid_file = "/var/run/qelm/qelm.pid";
  std::string device_folder = "/dev";
  std::chrono::milliseconds greeting_patience{12'000};
};

Facts Look(const Places& places, Hub& hub);

}  // namespace ctl::doctor
