#include "kit/Stream.h"

#include <arpa/inet.h>
#include <fcntl.h>
#include <netinet/tcp.h>
#include <poll.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <array>
#include <stdexcept>
#include <utility>

namespace {

sockaddr_in Address(const char* host, int port) {
  sockaddr_in address{};
  address.sin_family = AF_INET;
  address.sin_port = htons(static_cast<in_port_t>(port));
  inet_pton(AF_INET, host, &address.sin_addr);
  return address;
}

template <typename Address>
bool Connect(int fd, const Address& address) {
  return connect(fd, reinterpret_cast<const sockaddr*>(&address), sizeof address) == 0;
}

}  // namespace

Stream Stream::ToPort(int port, int local_port, const char* host) {
  Stream stream(socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0));
  const int on = 1;
  setsockopt(stream.fd_, SOL_SOCKET, SO_REUSEADDR, &on, sizeof on);
  const sockaddr_in local = Address("127.0.0.1", local_port);
  if (local_port != 0) bind(stream.fd_, reinterpret_cast<const sockaddr*>(&local), sizeof local);
  if (!Connect(stream.fd_, Address(host, port))) stream.Close();
  return stream;
}

Stream Stream::ToPath(const std::string& path) {
  Stream stream(socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0));
  sockaddr_un address{};
  address.sun_family = AF_UNIX;
  path.copy(address.sun_path, sizeof address.sun_path - 1);
  if (!Connect(stream.fd_, address)) throw std::runtime_error("cannot connect to " + path);
  return stream;
}

Stream Stream::ToDevice(const std::string& path) {
  Stream stream(open(path.c_str(), O_RDWR | O_NOCTTY | O_CLOEXEC));
  if (!stream.IsOpen()) throw std::runtime_error("cannot open " + path);
  return stream;
}

Stream::Stream(Stream&& other) noexcept
    : unread_(std::move(other.unread_)), fd_(std::exchange(other.fd_, -1)) {}

Stream& Stream::operator=(Stream&& other) noexcept {
  std::swap(unread_, other.unread_);
  std::swap(fd_, other.fd_);
  return *this;
}

int Stream::LocalPort() const {
  sockaddr_in local{};
  socklen_t length = sizeof local;
  getsockname(fd_, reinterpret_cast<sockaddr*>(&local), &length);
  return ntohs(local.sin_port);
}

void Stream::Send(std::string_view bytes) {
  if (!TrySend(bytes)) throw std::runtime_error("the other end has gone");
}

// A terminal takes no send().
bool Stream::TrySend(std::string_view bytes) {
  while (!bytes.empty()) {
    ssize_t sent = send(fd_, bytes.data(), bytes.size(), MSG_NOSIGNAL);
    if (sent < 0 && errno == ENOTSOCK) sent = write(fd_, bytes.data(), bytes.size());
    if (sent <= 0) return false;
    bytes.remove_prefix(static_cast<std::size_t>(sent));
  }
  return true;
}

void Stream::SendAtOnce() {
  const int on = 1;
  setsockopt(fd_, IPPROTO_TCP, TCP_NODELAY, &on, sizeof on);
}

std::string Stream::Read(std::size_t count) {
  while (unread_.size() < count) NeedMore();
  return Take(count);
}

std::string Stream::ReadUntil(std::string_view text) {
  std::size_t at = 0;
  while ((at = unread_.find(text)) == std::string::npos) NeedMore();
  return Take(at + text.size());
}

bool Stream::ReadMore(std::chrono::milliseconds bound) {
  pollfd end{fd_, POLLIN, 0};
  if (poll(&end, 1, static_cast<int>(bound.count())) <= 0) return false;
  std::array<char, 65536> buffer;
  const ssize_t count = read(fd_, buffer.data(), buffer.size());
  if (count <= 0) return false;
  unread_.append(buffer.data(), static_cast<std::size_t>(count));
  return true;
}

void Stream::NeedMore() {
  if (!ReadMore()) throw std::runtime_error("nothing came, or the other end has gone");
}

std::string Stream::Take(std::size_t count) {
  std::string bytes = unread_.substr(0, count);
  unread_.erase(0, count);
  return bytes;
}

void Stream::HalfClose() { shutdown(fd_, SHUT_WR); }

void Stream::Close() {
  if (fd_ >= 0) close(std::exchange(fd_, -1));
}

void Stream::Reset() {
  const linger at_once{1, 0};
  setsockopt(fd_, SOL_SOCKET, SO_LINGER, &at_once, sizeof at_once);
  Close();
}
