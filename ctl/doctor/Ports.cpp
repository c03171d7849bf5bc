#include "doctor/Ports.h"

#include <algorithm>
#include <fstream>
#include <sstream>

#include "doctor/Greeting.h"

namespace ctl::doctor {

namespace {

constexpr char kSomebody[] = "a program that only root may see";

bool IsIn(const std::vector<Process>& processes, const Process& wanted) {
  return std::any_of(processes.begin(), processes.end(),
                     [&](const Process& process) { return process.pid == wanted.pid; });
}

// The connection that the daemon has accepted.
const Socket* Served(const std::vector<Socket>& sockets, int port) {
  const auto found = std::find_if(sockets.begin(), sockets.end(), [&](const Socket& socket) {
    return socket.port == port && socket.is_open && socket.inode != 0;
  });
  return found == sockets.end() ? nullptr : &*found;
}

// The other end of a connection, where it is on this machine.
const Socket* OtherEnd(const std::vector<Socket>& sockets, const Socket& end) {
  const auto found = std::find_if(sockets.begin(), sockets.end(), [&](const Socket& socket) {
    return socket.port == end.peer_port && socket.peer_port == end.port && socket.is_open;
  });
  return found == sockets.end() ? nullptr : &*found;
}

void NameClient(const PortsView& view, const Socket& served, PortFacts& facts) {
  const Socket* client = OtherEnd(view.sockets, served);
  if (client == nullptr) {
    facts.who = served.peer_address;
    return;
  }
  const std::vector<Process> owners = OwnersOf(view.processes, client->inode);
  facts.who = owners.empty() ? kSomebody : owners.front().Text();
  facts.is_hub = !owners.empty() && owners.front().name == view.hub_program;
}

// Nobody else listens there, as far as can be seen.
bool IsOfDaemon(const PortsView& view, const Socket& listener, PortFacts& facts) {
  const std::vector<Process> owners = OwnersOf(view.processes, listener.inode);
  if (owners.empty()) {
    facts.who = kSomebody;
    return !view.daemons.empty();
  }
  facts.who = owners.front().Text();
  return std::any_of(owners.begin(), owners.end(),
                     [&](const Process& owner) { return IsIn(view.daemons, owner); });
}

}  // namespace

std::vector<Socket> AllSockets() {
  std::vector<Socket> sockets;
  for (const char* path : {"/proc/net/tcp", "/proc/net/tcp6"}) {
    std::ostringstream text;
    text << std::ifstream(path).rdbuf();
    const std::vector<Socket> some = ReadSockets(text.str());
    sockets.insert(sockets.end(), some.begin(), some.end());
  }
  return sockets;
}

const Socket* ListenerOn(const std::vector<Socket>& sockets, int port) {
  const auto found = std::find_if(sockets.begin(), sockets.end(), [&](const Socket& socket) {
    return socket.port == port && socket.listens;
  });
  return found == sockets.end() ? nullptr : &*found;
}

PortFacts LookAtPort(const PortsView& view, const PortSetting& setting,
                     std::chrono::milliseconds patience) {
  PortFacts facts{
      .setting = setting, .state = PortState::kClosed, .who = {}, .is_hub = false, .said = {}};
  const Socket* listener = ListenerOn(view.sockets, setting.number);
  if (listener != nullptr && !IsOfDaemon(view, *listener, facts)) {
    facts.state = PortState::kForeign;
    return facts;
  }
  if (const Socket* served = Served(view.sockets, setting.number)) {
    facts.state = PortState::kInUse;
    NameClient(view, *served, facts);
    return facts;
  }
  if (view.daemons.empty() || setting.number == 0) return facts;
  const std::string expected = GreetingOf(setting.name);
  const Greeting greeting = AskForGreeting(setting.number, expected, patience);
  facts.said = greeting.said;
  if (greeting.is_open)
    facts.state = greeting.said.find(expected) != std::string::npos ? PortState::kGreets
                  : greeting.said.empty()                           ? PortState::kSilent
                                                                    : PortState::kStrange;
  return facts;
}

}  // namespace ctl::doctor
