#include "doctor/Greeting.h"

#include <netinet/in.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <array>
#include <thread>

#include "base/Text.h"

namespace ctl::doctor {

namespace {

using Clock = std::chrono::steady_clock;

// A port listens again four seconds after a session.
constexpr std::chrono::seconds kClosedAfterSession{6};
constexpr std::chrono::milliseconds kBetweenTries{200};
constexpr size_t kMostSaid = 1000;

int Connect(int port) {
  const int fd = socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
  sockaddr_in address{};
  address.sin_family = AF_INET;
  address.sin_port = htons(static_cast<uint16_t>(port));
  address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
  if (connect(fd, reinterpret_cast<const sockaddr*>(&address), sizeof address) == 0) return fd;
  close(fd);
  return -1;
}

int ConnectInTime(int port) {
  const auto end = Clock::now() + kClosedAfterSession;
  while (true) {
    const int fd = Connect(port);
    if (fd >= 0 || Clock::now() > end) return fd;
    std::this_thread::sleep_for(kBetweenTries);
  }
}

std::string Listen(int fd, const std::string& expected, Clock::time_point end) {
  std::string said;
  while (said.size() < kMostSaid && said.find(expected) == std::string::npos) {
    const auto left = std::chrono::ceil<std::chrono::milliseconds>(end - Clock::now());
    pollfd readable{.fd = fd, .events = POLLIN, .revents = 0};
    if (left.count() <= 0 || poll(&readable, 1, static_cast<int>(left.count())) <= 0) break;
    std::array<char, 256> bytes{};
    const ssize_t count = read(fd, bytes.data(), bytes.size());
    if (count <= 0) break;
    said.append(bytes.data(), static_cast<size_t>(count));
  }
  return said;
}

}  // namespace

Greeting AskForGreeting(int port, const std::string& expected, std::chrono::milliseconds patience) {
  const int fd = ConnectInTime(port);
  if (fd < 0) return {};
  Greeting greeting{.is_open = true,
                    .said = Printable(Listen(fd, expected, Clock::now() + patience))};
  close(fd);
  return greeting;
}

std::string GreetingOf(const std::string& port_name) {
  return "QELM " + port_name + " interface is ready";
}

}  // namespace ctl::doctor
