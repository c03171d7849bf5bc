#include "Bus.h"

#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <array>
#include <cmath>
#include <cstring>
#include <filesystem>
#include <utility>

namespace {

constexpr int kWriteBytes = 6;  // length, command, address, count and two blocks

std::vector<std::string> Command(const BusSetup& setup, const std::string& control) {
  std::vector<std::string> words{
      BUILD_FOLDER "/qelm-bus", "--plain", "--link", setup.device, "--control", control};
  for (int address = 0; address < setup.cards; ++address) {
    const char* kind = address < setup.outputs ? "=digital-output" : "=digital-input";
    words.insert(words.end(), {"--card", Hex(address, 1) + kind});
  }
  if (setup.wired) words.insert(words.end(), {"--wire", "460800"});
  return words;
}

Time StampOf(msghdr& message) {
  timespec stamp{};
  for (cmsghdr* part = CMSG_FIRSTHDR(&message); part != nullptr; part = CMSG_NXTHDR(&message, part))
    if (part->cmsg_type == SCM_TIMESTAMPNS) std::memcpy(&stamp, CMSG_DATA(part), sizeof stamp);
  return Time(std::chrono::duration_cast<Clock::duration>(std::chrono::seconds(stamp.tv_sec) +
                                                          std::chrono::nanoseconds(stamp.tv_nsec)));
}

}  // namespace

Bus::Bus(const BusSetup& setup) : wired(setup.wired), first_input(setup.outputs) {
  const std::string control = setup.device + ".control";
  int ends[2] = {-1, -1};
  if (setup.tells_events) {
    if (socketpair(AF_UNIX, SOCK_DGRAM | SOCK_CLOEXEC, 0, ends) != 0)
      throw std::runtime_error("no socket pair");
    const int on = 1;
    setsockopt(ends[0], SOL_SOCKET, SO_TIMESTAMPNS, &on, sizeof on);
  }
  events_ = ends[0];
  process = Process(Command(setup, control), ends[1]);
  if (ends[1] >= 0) close(ends[1]);
  // The link is the last thing that the bus makes.
  Await(setup.device, [&] { return std::filesystem::is_symlink(setup.device); });
  control_.emplace(Stream::ToPath(control));
}

Bus::~Bus() {
  process.End();
  if (events_ >= 0) close(events_);
}

std::string Bus::Order(const std::string& line) {
  control_->Send(line + '\n');
  return control_->ReadUntil("ok\n");
}

long Bus::Frames() {
  const std::string status = Order("status");
  return std::stol(status.substr(status.find("frames ") + std::strlen("frames ")));
}

Time Bus::AwaitEvent(const std::string& text) {
  while (const auto event = NextEvent(kPatience))
    if (event->text.find(text) != std::string::npos) return event->when;
  throw std::runtime_error("the bus printed no line with " + text);
}

void Bus::ForgetEvents(milliseconds quiet) {
  while (NextEvent(quiet)) {
  }
}

Time Bus::AwaitCommand(int address, int value) {
  const Time came = AwaitEvent("> 10 " + Hex(address, 2) + " 02 " + Hex(value, 2));
  if (!wired) return came;
  return came + std::chrono::nanoseconds(std::lround(kWriteBytes * kByteMicroseconds * 1000));
}

std::optional<Bus::Event> Bus::NextEvent(milliseconds patience) {
  pollfd readable{events_, POLLIN, 0};
  if (poll(&readable, 1, static_cast<int>(patience.count())) != 1) return std::nullopt;
  std::array<char, 4096> line;
  std::array<char, 256> stamps;
  iovec place{line.data(), line.size()};
  msghdr message{};
  message.msg_iov = &place;
  message.msg_iovlen = 1;
  message.msg_control = stamps.data();
  message.msg_controllen = stamps.size();
  const ssize_t size = recvmsg(events_, &message, 0);
  if (size < 0) throw std::runtime_error("the bus has gone");
  return Event{std::string(line.data(), static_cast<std::size_t>(size)), StampOf(message)};
}
