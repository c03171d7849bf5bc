// What was found out about the site before anything is judged. Checks read it and touch nothing,
// so a test can write it down by hand.
#pragma once

#include <array>
#include <boost/json/value.hpp>
#include <chrono>
#include <optional>
#include <string>
#include <vector>

#include "doctor/Configuration.h"
#include "doctor/Processes.h"

namespace ctl::doctor {

struct LogFacts {
  bool folder_exists = false;
  bool may_write = false;  // the daemon may append to the file, or make it
  bool is_read_only = false;
  bool is_full = false;
  std::string last_of_link;  // its last line about the adapter; empty: none, or not readable
};

struct Device {
  std::string path;
  bool may_open = false;        // the daemon may
  std::string group;            // of the device
  std::vector<Process> others;  // programs that have it open, but for the daemon
};

enum class PortState {
  kClosed,   // nobody listens
  kForeign,  // a program that is not the daemon listens
  kInUse,    // a client is served
  kGreets,
  kSilent,   // takes a connection, and does not greet
  kStrange,  // says something else
};

struct PortFacts {
  PortSetting setting;
  PortState state = PortState::kClosed;
  std::string who;      // listens, or is served: "socat (process 77)", "10.0.0.7", "somebody"
  bool is_hub = false;  // it is the hub that is served
  std::string said;     // in place of a greeting
};

struct HubFacts {
  std::vector<Process> processes;
  std::string name;        // of its socket, or its URL
  std::string failure;     // why it could not be asked; empty: it answered
  int status = 0;          // of GET /api/bus
  boost::json::value bus;  // where that was 200
  boost::json::value cards;
  bool page_is_open = false;  // somebody listens on port 5080
  std::string page_owner;     // who, where it is not the hub
};

struct Facts {
  std::chrono::sys_seconds now;
  std::string config_file;
  std::string config_error;  // why it cannot be read; empty: it was read
  Configuration configuration;
  LogFacts log;
  std::string pid_file;
  std::optional<pid_t> pid;      // what stands in it
  std::vector<Process> daemons;  // programs called qelm
  Who daemon_user;
  std::vector<Device> devices;
  std::vector<PortFacts> ports;
  HubFacts hub;
};

}  // namespace ctl::doctor
