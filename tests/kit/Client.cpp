#include "kit/Client.h"

#include <arpa/inet.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <fstream>
#include <utility>

namespace {

// Shorter than the patience of a test, longer than any greeting takes.
constexpr std::chrono::seconds kGreetingPatience{10};

sockaddr_in Address(const char* host, int port) {
  sockaddr_in address{};
  address.sin_family = AF_INET;
  address.sin_port = htons(static_cast<std::uint16_t>(port));
  inet_pton(AF_INET, host, &address.sin_addr);
  return address;
}

int TryConnect(const char* host, int port, int local_port) {
  const int fd = socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
  const int on = 1;
  setsockopt(fd, SOL_SOCKET, SO_REUSEADDR, &on, sizeof on);
  const sockaddr_in local = Address("127.0.0.1", local_port);
  const sockaddr_in remote = Address(host, port);
  if (local_port != 0) bind(fd, reinterpret_cast<const sockaddr*>(&local), sizeof local);
  if (connect(fd, reinterpret_cast<const sockaddr*>(&remote), sizeof remote) == 0) return fd;
  close(fd);
  return -1;
}

std::string Readable(std::string_view bytes) { return testing::PrintToString(std::string(bytes)); }

}  // namespace

Client::Client(int port, int local_port, const char* host) {
  if (!WaitUntil([&] { return (socket_ = TryConnect(host, port, local_port)) >= 0; })) {
    ADD_FAILURE() << "port " << port << " refuses connections";
  }
}

Client::~Client() { Close(); }

Client::Client(Client&& other) noexcept
    : socket_(std::exchange(other.socket_, -1)), unread_(std::move(other.unread_)) {}

Client& Client::operator=(Client&& other) noexcept {
  std::swap(socket_, other.socket_);
  std::swap(unread_, other.unread_);
  return *this;
}

void Client::Send(std::string_view bytes, Place place) {
  while (!bytes.empty()) {
    const ssize_t sent = send(socket_, bytes.data(), bytes.size(), MSG_NOSIGNAL);
    if (sent <= 0) {
      FAIL_AT(place) << "cannot send " << Readable(bytes.substr(0, 100));
      return;
    }
    bytes.remove_prefix(static_cast<std::size_t>(sent));
  }
}

bool Client::ReadMore(std::chrono::milliseconds bound) {
  pollfd end{socket_, POLLIN, 0};
  if (poll(&end, 1, static_cast<int>(bound.count())) <= 0) return false;
  char buffer[4096];
  const ssize_t count = read(socket_, buffer, sizeof buffer);
  if (count <= 0) return false;
  unread_.append(buffer, static_cast<std::size_t>(count));
  return true;
}

void Client::ExpectBytes(std::string_view expected, Place place) {
  const auto fits_so_far = [&] {
    const std::size_t common = std::min(unread_.size(), expected.size());
    return unread_.compare(0, common, expected.substr(0, common)) == 0;
  };
  while (fits_so_far() && unread_.size() < expected.size() && ReadMore()) {
  }
  if (!fits_so_far() || unread_.size() < expected.size()) {
    FAIL_AT(place) << "expected " << Readable(expected) << "\n  came to " << Readable(unread_);
    return;
  }
  unread_.erase(0, expected.size());
}

std::string Client::ReadUntil(std::string_view ending, Place place) {
  while (unread_.find(ending) == std::string::npos) {
    if (ReadMore()) continue;
    FAIL_AT(place) << "no " << Readable(ending) << " in " << Readable(unread_);
    return std::exchange(unread_, "");
  }
  std::string text = unread_.substr(0, unread_.find(ending) + ending.size());
  unread_.erase(0, text.size());
  return text;
}

bool Client::Sees(std::string_view ending) {
  while (unread_.find(ending) == std::string::npos) {
    if (!ReadMore()) return false;
  }
  unread_.erase(0, unread_.find(ending) + ending.size());
  return true;
}

bool Client::IsServed() { return !unread_.empty() || ReadMore(kGreetingPatience); }

void Client::ExpectClosed(Place place) {
  const auto deadline = std::chrono::steady_clock::now() + kPatience;
  while (ReadMore()) {
  }
  if (std::chrono::steady_clock::now() >= deadline) FAIL_AT(place) << "the connection stays open";
}

void Client::ExpectSilence(Place place) {
  pollfd end{socket_, POLLIN, 0};
  if (poll(&end, 1, 0) > 0) ReadMore();
  if (!unread_.empty()) FAIL_AT(place) << "nobody asked for " << Readable(unread_);
}

void Client::HalfClose() { shutdown(socket_, SHUT_WR); }

void Client::Close() {
  if (socket_ >= 0) close(std::exchange(socket_, -1));
}

void Client::Reset() {
  const linger at_once{1, 0};
  setsockopt(socket_, SOL_SOCKET, SO_LINGER, &at_once, sizeof at_once);
  Close();
}

bool Refuses(int port) {
  const int fd = TryConnect("127.0.0.1", port, 0);
  if (fd >= 0) close(fd);
  return fd < 0;
}

bool AllIsRead(int port) {
  std::ifstream table("/proc/net/tcp");
  for (std::string line; std::getline(table, line);) {
    unsigned local = 0, remote = 0, state = 0, unsent = 0, unread = 0;
    const int fields = std::sscanf(line.c_str(), "%*d: %*x:%x %*x:%x %x %x:%x", &local, &remote,
                                   &state, &unsent, &unread);
    constexpr unsigned kEstablished = 1;
    if (fields != 5 || state != kEstablished) continue;
    const auto wanted = static_cast<unsigned>(port);
    if ((remote == wanted && unsent > 0) || (local == wanted && unread > 0)) return false;
  }
  return true;
}
