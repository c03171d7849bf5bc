#include "FakeAdapter.h"

#include <fcntl.h>
#include <poll.h>
#include <pthread.h>
#include <stdlib.h>
#include <sys/eventfd.h>
#include <termios.h>
#include <unistd.h>

#include <algorithm>
#include <cstdio>

#include "kit/Wait.h"

namespace {

bool BeginsWith(const Bytes& frame, const Bytes& prefix) {
  return frame.size() >= prefix.size() && std::equal(prefix.begin(), prefix.end(), frame.begin());
}

}  // namespace

Reply Silence() { return {}; }

Reply Raw(Bytes bytes) { return {{std::move(bytes)}}; }

Reply Packet(Bytes payload) {
  payload.insert(payload.begin(), static_cast<std::uint8_t>(payload.size()));
  return Raw(std::move(payload));
}

Reply InPieces(Bytes payload) {
  const Reply whole = Packet(std::move(payload));
  Reply reply;
  for (std::uint8_t byte : whole.pieces.front()) reply.pieces.push_back({byte});
  return reply;
}

Bytes operator+(Bytes head, const Bytes& tail) {
  head.insert(head.end(), tail.begin(), tail.end());
  return head;
}

FakeAdapter::FakeAdapter(std::string link) : link_(std::move(link)) {
  master_ = posix_openpt(O_RDWR | O_NOCTTY | O_CLOEXEC | O_NONBLOCK);
  char name[64] = {};
  if (master_ < 0 || unlockpt(master_) != 0 || ptsname_r(master_, name, sizeof name) != 0) {
    std::perror("pseudo terminal");
    abort();
  }
  slave_path_ = name;
  slave_ = open(name, O_RDWR | O_NOCTTY | O_CLOEXEC);
  termios raw{};
  tcgetattr(slave_, &raw);
  cfmakeraw(&raw);
  tcsetattr(slave_, TCSANOW, &raw);
  wake_ = eventfd(0, EFD_CLOEXEC);
  server_ = std::thread(&FakeAdapter::Serve, this);
  // Where it is allowed, the adapter does not wait for a busy processor either.
  const sched_param first{1};
  pthread_setschedparam(server_.native_handle(), SCHED_FIFO, &first);
}

FakeAdapter::~FakeAdapter() {
  Pull();
  HangUp();
  close(wake_);
}

void FakeAdapter::Plug() {
  {
    std::lock_guard hold(lock_);
    silent_ = false;
  }
  if (symlink(slave_path_.c_str(), link_.c_str()) != 0) std::perror(link_.c_str());
}

void FakeAdapter::Pull() {
  std::lock_guard hold(lock_);
  silent_ = true;
  unlink(link_.c_str());
}

void FakeAdapter::HangUp() {
  if (!server_.joinable()) return;
  eventfd_write(wake_, 1);
  server_.join();
  close(slave_);
  close(master_);
}

void FakeAdapter::PlugCard(int address, std::uint8_t type) {
  std::lock_guard hold(lock_);
  types_[address] = type;
}

void FakeAdapter::SetInputs(int address, Bytes blocks) {
  std::lock_guard hold(lock_);
  inputs_[address] = std::move(blocks);
}

void FakeAdapter::SetRegister(int address, std::uint8_t value) {
  std::lock_guard hold(lock_);
  registers_[address] = value;
}

void FakeAdapter::SetVersion(std::string text) {
  std::lock_guard hold(lock_);
  version_ = std::move(text);
}

void FakeAdapter::Script(Bytes prefix, std::vector<Reply> replies) {
  std::lock_guard hold(lock_);
  scripts_.push_back({std::move(prefix), {replies.begin(), replies.end()}, false});
}

void FakeAdapter::Always(Bytes prefix, Reply reply) {
  std::lock_guard hold(lock_);
  scripts_.push_back({std::move(prefix), {std::move(reply)}, true});
}

void FakeAdapter::ForgetScripts() {
  std::lock_guard hold(lock_);
  scripts_.clear();
}

void FakeAdapter::Send(const Bytes& bytes) { Write(bytes); }

void FakeAdapter::Serve() {
  Bytes received;
  pollfd ends[2] = {{master_, POLLIN, 0}, {wake_, POLLIN, 0}};
  while (poll(ends, 2, -1) >= 0 && ends[1].revents == 0) {
    std::uint8_t buffer[512];
    const ssize_t count = read(master_, buffer, sizeof buffer);
    if (count <= 0) continue;
    received.insert(received.end(), buffer, buffer + count);
    TakeFrames(received);
  }
}

void FakeAdapter::TakeFrames(Bytes& received) {
  while (!received.empty() && received.size() > received[0]) {
    const auto end = received.begin() + 1 + received[0];
    Bytes frame(received.begin() + 1, end);
    received.erase(received.begin(), end);
    const Reply reply = Choose(frame);
    for (const Bytes& piece : reply.pieces) Write(piece);
    std::lock_guard hold(lock_);
    frames_.push_back(std::move(frame));
    recorded_.notify_all();
  }
}

Reply FakeAdapter::Choose(const Bytes& frame) {
  std::lock_guard hold(lock_);
  if (silent_) return Silence();
  for (Scripted& script : scripts_) {
    if (script.replies.empty() || !BeginsWith(frame, script.prefix)) continue;
    Reply reply = script.replies.front();
    if (!script.forever) script.replies.pop_front();
    return reply;
  }
  return ByDefault(frame);
}

Reply FakeAdapter::ByDefault(const Bytes& frame) const {
  const std::uint8_t address = frame.size() > 1 ? frame[1] & 0x0F : 0;
  switch (frame.empty() ? 0 : frame[0]) {
    case 0x40:
      return Packet(Bytes(version_.begin(), version_.end()));
    case 0x30:
      return Packet(Bytes{'1'} + Bytes(types_, types_ + 16));
    case 0x20: {
      const auto blocks = inputs_.find(address);
      const std::size_t count = frame.size() > 2 ? frame[2] : 0;
      return Packet(Bytes{'!', address} +
                    (blocks == inputs_.end() ? Bytes(count) : blocks->second));
    }
    case 0x50:
      if (types_[address] == kEmpty) return Packet({'N'});
      return Packet({'Q', address, 0x00, registers_[address]});
    default:
      return Packet({'A'});
  }
}

void FakeAdapter::Write(const Bytes& bytes) {
  if (bytes.empty()) return;
  if (write(master_, bytes.data(), bytes.size()) < 0) std::perror("bus adapter");
}

bool FakeAdapter::NextFrame(Bytes& frame) {
  std::unique_lock hold(lock_);
  if (!recorded_.wait_for(hold, kPatience, [this] { return cursor_ < frames_.size(); }))
    return false;
  frame = frames_[cursor_++];
  return true;
}

void FakeAdapter::ExpectFrames(const std::vector<Bytes>& frames, Place place) {
  for (const Bytes& expected : frames) {
    Bytes seen;
    const bool came = NextFrame(seen);
    if (came && seen == expected) continue;
    FAIL_AT(place) << "expected frame " << Hex(expected) << "\n    seen frame " << Hex(seen);
    return;
  }
}

void FakeAdapter::ExpectFrame(const Bytes& frame, Place place) {
  Bytes seen;
  std::string others;
  while (NextFrame(seen)) {
    if (seen == frame) return;
    if (others.size() < 2000) others += "\n    " + Hex(seen);
  }
  FAIL_AT(place) << "expected frame " << Hex(frame) << "\nseen only:" << others;
}

void FakeAdapter::ExpectCount(const Bytes& prefix, int count, Place place) {
  Bytes seen;
  for (int found = 0; found < count; found += BeginsWith(seen, prefix) ? 1 : 0) {
    if (NextFrame(seen)) continue;
    FAIL_AT(place) << "only " << found << " of " << count << " frames " << Hex(prefix);
    return;
  }
}

void FakeAdapter::ForgetFrames() {
  std::lock_guard hold(lock_);
  cursor_ = frames_.size();
}

std::vector<Bytes> FakeAdapter::Frames() {
  std::lock_guard hold(lock_);
  return frames_;
}
