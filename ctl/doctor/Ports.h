// A port of the daemon as a client finds it: who listens, who is served, whether it greets.
#pragma once

#include <chrono>
#include <string>
#include <vector>

#include "doctor/Facts.h"
#include "doctor/Sockets.h"

namespace ctl::doctor {

// Of IPv4 and IPv6.
std::vector<Socket> AllSockets();

// Null: nobody listens there.
const Socket* ListenerOn(const std::vector<Socket>& sockets, int port);

struct PortsView {
  const std::vector<Socket>& sockets;
  const std::vector<Process>& processes;
  const std::vector<Process>& daemons;
  std::string hub_program;
};

// Asks for the greeting where nobody is served.
PortFacts LookAtPort(const PortsView& view, const PortSetting& setting,
                     std::chrono::milliseconds patience);

}  // namespace ctl::doctor
