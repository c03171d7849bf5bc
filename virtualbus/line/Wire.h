// The serial line as the adapter sees it: a pseudo terminal whose other end the host opens as its
// serial device. Cuts what arrives into frames and sends each byte at its time.
#pragma once

#include <chrono>
#include <deque>
#include <functional>
#include <string>

#include "base/Loop.h"
#include "base/Problem.h"
#include "base/Text.h"

namespace virtualbus {

class Wire {
 public:
  using FrameSink = std::function<void(const Bytes& frame)>;
  using NoteSink = std::function<void(std::string note)>;

  explicit Wire(Loop& loop) : loop_(loop) {}
  ~Wire();
  Wire(const Wire&) = delete;
  Wire& operator=(const Wire&) = delete;

  Problem Open(FrameSink on_frame, NoteSink on_note);
  void SetBaud(long baud);  // 0: no byte takes any time
  void SetConnected(bool connected);

  // Raw bytes, the length byte of a frame included. Pieces have a short gap between them.
  void Send(const Bytes& bytes, Clock::duration delay = {}, size_t pieces = 1);

  const std::string& DevicePath() const { return device_path_; }

 private:
  struct TimedByte {
    Time due;
    uint8_t value;
  };

  Problem OpenPty();
  void OnReadable();
  void TakeFrames();
  void SendDue();

  Loop& loop_;
  FrameSink on_frame_;
  NoteSink on_note_;
  int master_ = -1;
  int device_ = -1;  // held open: the line never hangs up when the host closes it
  std::string device_path_;
  bool connected_ = true;
  Clock::duration byte_time_{};

  Bytes incoming_;
  Loop::TimerId cut_off_ = 0;
  std::deque<TimedByte> outgoing_;
  Time free_at_{};  // when the last byte on the line, in or out, is through
  Loop::TimerId sending_ = 0;
};

}  // namespace virtualbus
