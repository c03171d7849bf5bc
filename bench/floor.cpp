// The floor: what TCP, a pseudo terminal and one poll loop cost, and nothing else.
//   bench-floor PORT DEVICE
// Serves one client on the loopback interface and ends with it.
#include <poll.h>
#include <unistd.h>

#include <array>
#include <cstdlib>

#include "ends.h"

namespace {

bool Pass(int from, int to) {
  std::array<char, 4096> bytes;
  const ssize_t count = read(from, bytes.data(), bytes.size());
  return count > 0 && write(to, bytes.data(), static_cast<size_t>(count)) == count;
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 3) return 2;
  const int device = OpenDevice(argv[2], 0);
  const int client = AcceptClient(std::atoi(argv[1]));
  if (device < 0 || client < 0) return 1;
  std::array<pollfd, 2> ends{{{client, POLLIN, 0}, {device, POLLIN, 0}}};
  while (poll(ends.data(), ends.size(), -1) > 0) {
    if (ends[0].revents != 0 && !Pass(client, device)) return 0;
    if (ends[1].revents != 0 && !Pass(device, client)) return 1;
  }
  return 1;
}
