#include "Client.h"

#include <arpa/inet.h>
#include <netinet/tcp.h>
#include <poll.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <array>
#include <cstdio>
#include <cstring>
#include <fstream>
#include <utility>

#include "Clock.h"

namespace {

constexpr int kPatienceMilliseconds = milliseconds(kPatience).count();

int Connect(int family, const sockaddr* address, socklen_t length) {
  const int fd = socket(family, SOCK_STREAM | SOCK_CLOEXEC, 0);
  if (connect(fd, address, length) != 0) throw std::runtime_error("nobody listens");
  return fd;
}

}  // namespace

Client Client::ToPort(int port) {
  Await("port " + std::to_string(port), [port] { return IsListening(port); });
  sockaddr_in address{};
  address.sin_family = AF_INET;
  address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
  address.sin_port = htons(static_cast<in_port_t>(port));
  Client client(Connect(AF_INET, reinterpret_cast<const sockaddr*>(&address), sizeof address));
  const int on = 1;
  setsockopt(client.fd_, IPPROTO_TCP, TCP_NODELAY, &on, sizeof on);
  return client;
}

Client Client::ToPath(const std::string& path) {
  sockaddr_un address{};
  address.sun_family = AF_UNIX;
  std::memcpy(address.sun_path, path.data(), path.size());
  return Client(Connect(AF_UNIX, reinterpret_cast<const sockaddr*>(&address), sizeof address));
}

Client::~Client() {
  if (fd_ >= 0) close(fd_);
}

Client::Client(Client&& other) noexcept
    : fd_(std::exchange(other.fd_, -1)), waiting_(std::move(other.waiting_)) {}

void Client::Send(std::string_view bytes) {
  if (send(fd_, bytes.data(), bytes.size(), MSG_NOSIGNAL) != static_cast<ssize_t>(bytes.size()))
    throw std::runtime_error("the other end has gone");
}

std::string Client::ReadUntil(std::string_view text) {
  std::size_t at = 0;
  while ((at = waiting_.find(text)) == std::string::npos) ReadMore();
  return Read(at + text.size());
}

std::string Client::Read(std::size_t count) {
  while (waiting_.size() < count) ReadMore();
  std::string bytes = waiting_.substr(0, count);
  waiting_.erase(0, count);
  return bytes;
}

void Client::ReadMore() {
  std::array<char, 65536> bytes;
  pollfd readable{fd_, POLLIN, 0};
  if (poll(&readable, 1, kPatienceMilliseconds) != 1) throw std::runtime_error("no answer came");
  const ssize_t count = read(fd_, bytes.data(), bytes.size());
  if (count <= 0) throw std::runtime_error("the other end has gone");
  waiting_.append(bytes.data(), static_cast<std::size_t>(count));
}

bool IsListening(int port) {
  std::array<char, 64> listener;
  std::snprintf(listener.data(), listener.size(), ":%04X 00000000:0000 0A ",
                static_cast<unsigned>(port));
  std::ifstream table("/proc/net/tcp");
  for (std::string line; std::getline(table, line);)
    if (line.find(listener.data()) != std::string::npos) return true;
  return false;
}
