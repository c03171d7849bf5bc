// Asks a port of the daemon for its greeting, as a client would, and leaves at once.
#pragma once

#include <chrono>
#include <string>

namespace ctl::doctor {

struct Greeting {
  bool is_open = false;  // somebody took the connection
  std::string said;      // what came, without what is no text; empty: nothing in time
};

// Waits for a port that is closed as long as one is after a session, then so long for a greeting.
// Ends as soon as `expected` has come.
Greeting AskForGreeting(int port, const std::string& expected, std::chrono::milliseconds patience);

// "QELM IO interface is ready"
std::string GreetingOf(const std::string& port_name);

}  // namespace ctl::doctor
