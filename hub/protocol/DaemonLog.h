// The daemon's log, line by line: what each says of the daemon and of the adapter. Pure functions.
#pragma once

#include <string>
#include <string_view>

namespace hub::protocol {

enum class LogEvent {
  kOther,          // nothing that the hub acts on
  kDaemonStarted,  // a new process: its card table is empty
  kDaemonStopped,
  kAdapterSearched,  // a device is being asked whether it is the adapter
  kAdapterFound,     // a discovery follows where the daemon is told to do one
  kAdapterLost,      // an exchange has timed out, the device is closed
  kAdapterMissing,   // no device, or none that could be opened
  kPaceSet,          // the pause of the configuration
  kIoCame,           // a client of the IO port
  kIoLeft,           // and has left it
};

struct LogLine {
  LogEvent event = LogEvent::kOther;
  std::string time;     // "2026-11-21 12:00:00", local
  std::string device;   // "/dev/ttyUSB0" where the event names one
  std::string version;  // of the adapter, where the event says it
  int pause = 0;        // microseconds, of kPaceSet
  std::string text;     // the message, without time and tag
  bool is_error = false;
};

// "2026-11-21 12:00:00 [INF] hardware found on /dev/ttyUSB0 version: v1.2". A line of any other
// form is kOther with all of it as its text.
LogLine ParseLogLine(std::string_view line);

}  // namespace hub::protocol
