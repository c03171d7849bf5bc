// One end of a stream of bytes: a TCP port, a local socket or a terminal. What was read
// and not asked for yet is kept. What does not come, or cannot go, throws.
#pragma once

#include <chrono>
#include <string>
#include <string_view>

#include "kit/Wait.h"

class Stream {
 public:
  // One try: not open where nobody listens.
  static Stream ToPort(int port, int local_port = 0, const char* host = "127.0.0.1");
  static Stream ToPath(const std::string& path);
  static Stream ToDevice(const std::string& path);
  static Stream FromDescriptor(int fd) { return Stream(fd); }

  Stream() = default;
  ~Stream() { Close(); }
  Stream(Stream&& other) noexcept;
  Stream& operator=(Stream&& other) noexcept;

  bool IsOpen() const { return fd_ >= 0; }
  int LocalPort() const;

  void Send(std::string_view bytes);
  // False where the other end has gone.
  bool TrySend(std::string_view bytes);
  void SendAtOnce();  // also what is short

  // So many bytes.
  std::string Read(std::size_t count);
  // Everything up to and with the text.
  std::string ReadUntil(std::string_view text);
  // Waits for bytes; false when none come in time, or no more at all.
  bool ReadMore(std::chrono::milliseconds bound = kPatience);

  void HalfClose();
  void Close();
  void Reset();  // closes with a reset instead of an orderly end

 protected:
  std::string Take(std::size_t count);

  std::string unread_;

 private:
  explicit Stream(int fd) : fd_(fd) {}
  void NeedMore();

  int fd_ = -1;
};
