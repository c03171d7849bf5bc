// A running qelm-bus with a host's end of its line and a script's end of its control socket.
// Every wait is for a condition and has a bound of ten seconds.
#pragma once

#include <gtest/gtest.h>

#include <chrono>
#include <filesystem>
#include <memory>
#include <string>
#include <thread>
#include <vector>

#include "base/Text.h"

namespace virtualbus {

constexpr std::chrono::seconds kBound{10};

// Looks again and again until the condition holds; false when it never did.
template <typename Condition>
bool WaitUntil(Condition condition) {
  const auto end = std::chrono::steady_clock::now() + kBound;
  while (!condition()) {
    if (std::chrono::steady_clock::now() > end) return false;
    std::this_thread::sleep_for(std::chrono::milliseconds(2));
  }
  return true;
}

// A directory of its own, gone afterwards.
class TempFolder {
 public:
  TempFolder();
  ~TempFolder();
  std::string Path(const std::string& name) const { return (folder_ / name).string(); }
  std::string Write(const std::string& name, const std::string& text) const;  // gives the path
  static std::string Read(const std::string& path);

 private:
  std::filesystem::path folder_;
};

// A program started with its output in files.
class Program {
 public:
  Program(const TempFolder& folder, std::vector<std::string> arguments);
  ~Program();
  Program(const Program&) = delete;
  Program& operator=(const Program&) = delete;

  bool IsRunning();
  int WaitForExit();  // its status, -1 for a signal
  void Signal(int number) const;
  pid_t Pid() const { return pid_; }
  std::string Output() const { return TempFolder::Read(out_); }
  std::string Errors() const { return TempFolder::Read(err_); }

 private:
  std::string out_;
  std::string err_;
  pid_t pid_ = -1;
  int status_ = 0;
};

// The host's end of the line.
class Host {
 public:
  explicit Host(const std::string& device);
  ~Host();
  Host(const Host&) = delete;
  Host& operator=(const Host&) = delete;

  void SendRaw(const Bytes& bytes) const;
  void Send(const Bytes& payload) const;  // with its length byte in front
  Bytes Receive(size_t count) const;      // that many bytes as they come
  Bytes ReceiveReply() const;             // one frame, without its length byte
  Bytes Ask(const Bytes& payload) const;

 private:
  int fd_;
};

// The script's end of the control socket.
class Script {
 public:
  explicit Script(const std::string& path);
  ~Script();
  Script(const Script&) = delete;
  Script& operator=(const Script&) = delete;

  void Send(const std::string& text) const;
  std::string Answer();                       // up to and with the "ok" or "error" line
  std::string Tell(const std::string& line);  // without the last line feed

 private:
  int fd_;
  std::string received_;
};

class BusTest : public testing::Test {
 protected:
  // Starts it with a link and a control socket, and waits until both can be used.
  void Start(std::vector<std::string> arguments = {});
  Bytes Ask(const Bytes& payload) const { return host_->Ask(payload); }
  std::string Tell(const std::string& line) { return script_->Tell(line); }
  void ExpectOutput(const std::string& text) const;  // sooner or later

  TempFolder folder_;
  std::unique_ptr<Program> bus_;
  std::unique_ptr<Host> host_;
  std::unique_ptr<Script> script_;
};

}  // namespace virtualbus
