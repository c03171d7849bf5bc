#include "kit/Ports.h"

#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

#include <cstdio>
#include <fstream>
#include <string>
#include <vector>

#include "kit/Stream.h"

namespace {

constexpr unsigned kEstablished = 0x01;
constexpr unsigned kListening = 0x0A;
constexpr unsigned kKeepAliveTimer = 2;

// A line of the kernel's table of connections.
struct Connection {
  unsigned local_port = 0;
  unsigned remote_port = 0;
  unsigned state = 0;
  unsigned unsent = 0;  // bytes
  unsigned unread = 0;  // bytes
  unsigned timer = 0;
  unsigned expires = 0;  // hundredths of a second
};

std::vector<Connection> Connections() {
  std::vector<Connection> connections;
  std::ifstream table("/proc/net/tcp");
  for (std::string line; std::getline(table, line);) {
    Connection c;
    if (std::sscanf(line.c_str(), "%*d: %*x:%x %*x:%x %x %x:%x %x:%x", &c.local_port,
                    &c.remote_port, &c.state, &c.unsent, &c.unread, &c.timer, &c.expires) == 7)
      connections.push_back(c);
  }
  return connections;
}

bool CanBind(int port) {
  const int fd = socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
  sockaddr_in any{};
  any.sin_family = AF_INET;
  any.sin_port = htons(static_cast<in_port_t>(port));
  const bool good = bind(fd, reinterpret_cast<const sockaddr*>(&any), sizeof any) == 0;
  close(fd);
  return good;
}

}  // namespace

// Below the ports that the system hands out to clients.
int FreePort() {
  static int port = 10'000 + getpid() * 11 % 20'000;
  do ++port;
  while (!CanBind(port));
  return port;
}

bool Refuses(int port) { return !Stream::ToPort(port).IsOpen(); }

bool IsListening(int port) {
  for (const Connection& c : Connections())
    if (c.state == kListening && c.local_port == static_cast<unsigned>(port)) return true;
  return false;
}

bool AllIsRead(int port) {
  const auto wanted = static_cast<unsigned>(port);
  for (const Connection& c : Connections()) {
    if (c.state != kEstablished) continue;
    if (c.remote_port == wanted && c.unsent > 0) return false;
    if (c.local_port == wanted && c.unread > 0) return false;
  }
  return true;
}

bool IsAskedWithin(int port, std::chrono::seconds time) {
  for (const Connection& c : Connections())
    if (c.local_port == static_cast<unsigned>(port) && c.timer == kKeepAliveTimer)
      return c.expires <= time.count() * 100;
  return false;
}
