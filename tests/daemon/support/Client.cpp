#include "support/Client.h"

#include <netinet/in.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>
#include <array>

namespace {

constexpr int kPatienceMs = 30'000;

sockaddr_in Address(in_addr_t host, int port) {
  sockaddr_in address{};
  address.sin_family = AF_INET;
  address.sin_addr.s_addr = htonl(host);
  address.sin_port = htons(static_cast<uint16_t>(port));
  return address;
}

int NewSocket() { return socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0); }

bool CanBind(int port) {
  const int fd = NewSocket();
  const sockaddr_in any = Address(INADDR_ANY, port);
  const bool good = bind(fd, reinterpret_cast<const sockaddr*>(&any), sizeof any) == 0;
  close(fd);
  return good;
}

bool WaitForInput(int fd) {
  pollfd input{fd, POLLIN, 0};
  return poll(&input, 1, kPatienceMs) == 1;
}

}  // namespace

// Below the ports that the system hands out to clients.
int FreePort() {
  static int port = 10'000 + getpid() * 11 % 20'000;
  do ++port;
  while (!CanBind(port));
  return port;
}

Client::Client(int port) : Fd(NewSocket()) {
  const sockaddr_in loopback = Address(INADDR_LOOPBACK, port);
  Connected = connect(Fd, reinterpret_cast<const sockaddr*>(&loopback), sizeof loopback) == 0;
}

Client::~Client() { close(Fd); }

void Client::Send(const std::string& bytes) const {
  [[maybe_unused]] const ssize_t sent = send(Fd, bytes.data(), bytes.size(), MSG_NOSIGNAL);
}

std::string Client::Receive(std::size_t count) const {
  std::string received;
  std::array<char, 512> buffer{};
  while (received.size() < count && WaitForInput(Fd)) {
    const std::size_t room = std::min(count - received.size(), buffer.size());
    const ssize_t got = recv(Fd, buffer.data(), room, 0);
    if (got <= 0) break;
    received.append(buffer.data(), static_cast<std::size_t>(got));
  }
  return received;
}

bool Client::IsDropped() const {
  char byte = 0;
  return WaitForInput(Fd) && recv(Fd, &byte, 1, 0) <= 0;
}

bool Client::HasNothing() const {
  char byte = 0;
  return recv(Fd, &byte, 1, MSG_DONTWAIT | MSG_PEEK) < 0;
}

int Client::LocalPort() const {
  sockaddr_in local{};
  socklen_t length = sizeof local;
  getsockname(Fd, reinterpret_cast<sockaddr*>(&local), &length);
  return ntohs(local.sin_port);
}
