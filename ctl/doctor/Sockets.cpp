#include "doctor/Sockets.h"

#include <charconv>
#include <sstream>

namespace ctl::doctor {

namespace {

constexpr char kEstablished[] = "01";
constexpr char kListen[] = "0A";
constexpr size_t kIpv4Digits = 8;

unsigned Hex(std::string_view digits) {
  unsigned value = 0;
  std::from_chars(digits.data(), digits.data() + digits.size(), value, 16);
  return value;
}

// The kernel prints the four bytes as one number of this machine: "0100007F" is 127.0.0.1.
std::string Address(std::string_view digits) {
  if (digits.size() != kIpv4Digits) return std::string(digits);
  const unsigned value = Hex(digits);
  std::string text;
  for (unsigned shift = 0; shift < 32; shift += 8)
    text += (shift == 0 ? "" : ".") + std::to_string((value >> shift) & 0xFFU);
  return text;
}

}  // namespace

std::vector<Socket> ReadSockets(const std::string& text) {
  std::vector<Socket> sockets;
  std::istringstream lines(text);
  std::string line;
  std::getline(lines, line);
  while (std::getline(lines, line)) {
    std::istringstream words(line);
    std::string number, local, peer, state, skipped;
    Socket socket;
    words >> number >> local >> peer >> state;
    for (int i = 0; i < 5; ++i) words >> skipped;  // queues, timer, retransmits, user, time-out
    words >> socket.inode;
    const size_t local_colon = local.find(':');
    const size_t peer_colon = peer.find(':');
    if (local_colon == std::string::npos || peer_colon == std::string::npos) continue;
    socket.address = Address(std::string_view(local).substr(0, local_colon));
    socket.port = static_cast<int>(Hex(std::string_view(local).substr(local_colon + 1)));
    socket.peer_address = Address(std::string_view(peer).substr(0, peer_colon));
    socket.peer_port = static_cast<int>(Hex(std::string_view(peer).substr(peer_colon + 1)));
    socket.listens = state == kListen;
    socket.is_open = state == kEstablished;
    sockets.push_back(socket);
  }
  return sockets;
}

}  // namespace ctl::doctor
