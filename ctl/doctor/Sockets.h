// TCP connections as the kernel lists them in /proc/net/tcp. Pure.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace ctl::doctor {

struct Socket {
  std::string address;  // "127.0.0.1"; of IPv6 the digits as they stand there
  int port = 0;
  std::string peer_address;
  int peer_port = 0;
  bool listens = false;
  bool is_open = false;  // an established connection
  uint64_t inode = 0;    // 0: nobody has accepted it yet
};

// The lines of the file behind its heading.
std::vector<Socket> ReadSockets(const std::string& text);

}  // namespace ctl::doctor
