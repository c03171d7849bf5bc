// The floor: what TCP, a pseudo terminal and one poll loop cost, and nothing else.
//   bench-floor PORT DEVICE
// Serves one client on the loopback interface and ends with it.
#include <fcntl.h>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <poll.h>
#include <sys/socket.h>
#include <termios.h>
#include <unistd.h>

#include <array>
#include <cstdlib>

namespace {

int OpenDevice(const char* path) {
  const int device = open(path, O_RDWR | O_NOCTTY | O_CLOEXEC);
  termios line{};
  cfmakeraw(&line);
  cfsetspeed(&line, B460800);
  line.c_cflag |= CREAD | CLOCAL;
  return tcsetattr(device, TCSANOW, &line) == 0 ? device : -1;
}

int AcceptClient(int port) {
  const int listener = socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
  const int on = 1;
  setsockopt(listener, SOL_SOCKET, SO_REUSEADDR, &on, sizeof on);
  sockaddr_in address{};
  address.sin_family = AF_INET;
  address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
  address.sin_port = htons(static_cast<in_port_t>(port));
  bind(listener, reinterpret_cast<const sockaddr*>(&address), sizeof address);
  listen(listener, 1);
  const int client = accept(listener, nullptr, nullptr);
  setsockopt(client, IPPROTO_TCP, TCP_NODELAY, &on, sizeof on);
  return client;
}

bool Pass(int from, int to) {
  std::array<char, 4096> bytes;
  const ssize_t count = read(from, bytes.data(), bytes.size());
  return count > 0 && write(to, bytes.data(), static_cast<size_t>(count)) == count;
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 3) return 2;
  const int device = OpenDevice(argv[2]);
  const int client = AcceptClient(std::atoi(argv[1]));
  if (device < 0 || client < 0) return 1;
  std::array<pollfd, 2> ends{{{client, POLLIN, 0}, {device, POLLIN, 0}}};
  while (poll(ends.data(), ends.size(), -1) > 0) {
    if (ends[0].revents != 0 && !Pass(client, device)) return 0;
    if (ends[1].revents != 0 && !Pass(device, client)) return 1;
  }
  return 1;
}
