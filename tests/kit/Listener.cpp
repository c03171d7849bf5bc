#include "kit/Listener.h"

#include <arpa/inet.h>
#include <netinet/in.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <stdexcept>
#include <system_error>

Listener::Listener(int port) : fd_(socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0)) {
  const int on = 1;
  setsockopt(fd_, SOL_SOCKET, SO_REUSEADDR, &on, sizeof on);
  sockaddr_in address{};
  address.sin_family = AF_INET;
  address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
  address.sin_port = htons(static_cast<uint16_t>(port));
  if (bind(fd_, reinterpret_cast<const sockaddr*>(&address), sizeof address) != 0 ||
      listen(fd_, 1) != 0)
    throw std::system_error(errno, std::generic_category(), "listen");
}

Listener::~Listener() { close(fd_); }

int Listener::Port() const {
  sockaddr_in address{};
  socklen_t length = sizeof address;
  getsockname(fd_, reinterpret_cast<sockaddr*>(&address), &length);
  return ntohs(address.sin_port);
}

bool Listener::HasClient(std::chrono::milliseconds bound) const {
  pollfd listening{fd_, POLLIN, 0};
  return poll(&listening, 1, static_cast<int>(bound.count())) > 0;
}

Stream Listener::Accept() {
  if (!HasClient(kPatience)) throw std::runtime_error("no client has come");
  return Stream::FromDescriptor(accept4(fd_, nullptr, nullptr, SOCK_CLOEXEC));
}
