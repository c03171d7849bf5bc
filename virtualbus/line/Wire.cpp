#include "line/Wire.h"

#include <fcntl.h>
#include <termios.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdlib>
#include <cstring>

namespace virtualbus {

namespace {

using std::chrono::milliseconds;

constexpr long kBitsPerByte = 10;  // start, eight, stop

// Bytes of one frame come close together; after a longer silence the next byte starts a new frame.
constexpr milliseconds kLongestGap{20};
constexpr milliseconds kPieceGap{2};

Problem Failed(const std::string& what) { return Problem(what + ": " + std::strerror(errno)); }

}  // namespace

Wire::~Wire() {
  if (master_ != -1) close(master_);
  if (device_ != -1) close(device_);
}

Problem Wire::Open(FrameSink on_frame, NoteSink on_note) {
  on_frame_ = std::move(on_frame);
  on_note_ = std::move(on_note);
  if (Problem problem = OpenPty()) return problem;
  loop_.Watch(master_, [this] { OnReadable(); });
  return {};
}

Problem Wire::OpenPty() {
  master_ = posix_openpt(O_RDWR | O_NOCTTY | O_NONBLOCK | O_CLOEXEC);
  std::array<char, 128> path{};
  if (master_ == -1 || grantpt(master_) != 0 || unlockpt(master_) != 0 ||
      ptsname_r(master_, path.data(), path.size()) != 0) {
    return Failed("cannot make a pseudo terminal");
  }
  device_path_ = path.data();
  device_ = open(path.data(), O_RDWR | O_NOCTTY | O_CLOEXEC);
  termios settings{};
  if (device_ == -1 || tcgetattr(device_, &settings) != 0) return Failed(path.data());
  cfmakeraw(&settings);
  if (tcsetattr(device_, TCSANOW, &settings) != 0) return Failed(path.data());
  return {};
}

void Wire::SetBaud(long baud) {
  constexpr std::chrono::nanoseconds kByteAtOneBaud = std::chrono::seconds(kBitsPerByte);
  byte_time_ = baud == 0 ? std::chrono::nanoseconds(0) : kByteAtOneBaud / baud;
}

void Wire::SetConnected(bool connected) {
  connected_ = connected;
  loop_.Cancel(cut_off_);
  incoming_.clear();
  outgoing_.clear();
  tcflush(device_, TCIOFLUSH);
}

void Wire::OnReadable() {
  std::array<uint8_t, 4096> buffer;
  const ssize_t count = read(master_, buffer.data(), buffer.size());
  if (count <= 0 || !connected_) return;
  loop_.Cancel(cut_off_);
  incoming_.insert(incoming_.end(), buffer.begin(), buffer.begin() + count);
  TakeFrames();
  if (incoming_.empty()) return;
  cut_off_ = loop_.After(kLongestGap, [this] {
    on_note_("frame cut off: " + Hex(incoming_));
    incoming_.clear();
  });
}

void Wire::TakeFrames() {
  while (connected_ && !incoming_.empty() && incoming_.size() > incoming_[0]) {
    const auto end = incoming_.begin() + 1 + incoming_[0];
    const Bytes frame(incoming_.begin() + 1, end);
    incoming_.erase(incoming_.begin(), end);
    if (frame.empty()) continue;
    const auto line_time = byte_time_ * static_cast<long>(frame.size() + 1);
    free_at_ = std::max(free_at_, Clock::now()) + line_time;
    on_frame_(frame);
  }
}

void Wire::Send(const Bytes& bytes, Clock::duration delay, size_t pieces) {
  if (!connected_ || bytes.empty()) return;
  const size_t per_piece = (bytes.size() + pieces - 1) / pieces;
  Time due = std::max(free_at_, Clock::now() + delay);
  for (size_t i = 0; i < bytes.size(); ++i) {
    if (i > 0 && i % per_piece == 0) due += kPieceGap;
    due += byte_time_;
    outgoing_.push_back({due, bytes[i]});
  }
  free_at_ = due;
  SendDue();
}

// Once the host's buffer is full, further bytes are lost, as on a real line.
void Wire::SendDue() {
  const Time now = Clock::now();
  Bytes due;
  while (!outgoing_.empty() && outgoing_.front().due <= now) {
    due.push_back(outgoing_.front().value);
    outgoing_.pop_front();
  }
  if (!due.empty() && write(master_, due.data(), due.size()) < 0 && errno != EAGAIN) {
    on_note_("cannot write to the line: " + std::string(std::strerror(errno)));
  }
  loop_.Cancel(sending_);
  if (outgoing_.empty()) return;
  sending_ = loop_.At(outgoing_.front().due, [this] { SendDue(); });
}

}  // namespace virtualbus
