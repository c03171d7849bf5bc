// A running qelm-bus with a host's end of its line and a script's end of its control socket.
#pragma once

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

#include "base/Text.h"
#include "kit/Files.h"
#include "kit/Stream.h"
#include "kit/TempDir.h"

namespace virtualbus {

// A program started with its output in files.
class Program {
 public:
  Program(const TempDir& folder, std::vector<std::string> arguments);  // qelm-bus
  Program(const TempDir& folder, const std::string& binary, std::vector<std::string> arguments);
  ~Program();
  Program(const Program&) = delete;
  Program& operator=(const Program&) = delete;

  bool IsRunning();
  int WaitForExit();  // its status, -1 for a signal
  void Signal(int number) const;
  pid_t Pid() const { return pid_; }
  std::string Output() const { return ReadFile(out_); }
  std::string Errors() const { return ReadFile(err_); }

 private:
  std::string out_;
  std::string err_;
  pid_t pid_ = -1;
  int status_ = 0;
};

// The host's end of the line.
class Host {
 public:
  explicit Host(const std::string& device) : line_(Stream::ToDevice(device)) {}

  void SendRaw(const Bytes& bytes);
  void Send(const Bytes& payload);  // with its length byte in front
  Bytes Receive(size_t count);      // that many bytes as they come
  Bytes ReceiveReply();             // one frame, without its length byte
  Bytes Ask(const Bytes& payload);

 private:
  Stream line_;
};

// The script's end of the control socket.
class Script {
 public:
  explicit Script(const std::string& path) : socket_(Stream::ToPath(path)) {}

  void Send(const std::string& text) { socket_.Send(text); }
  std::string Answer();                        // up to and with the "ok" or "error" line
  std::string Order(const std::string& line);  // without the last line feed

 private:
  Stream socket_;
};

class BusTest : public testing::Test {
 protected:
  // Starts it with a link and a control socket, and waits until both can be used.
  void Start(std::vector<std::string> arguments = {});
  Bytes Ask(const Bytes& payload) const { return host->Ask(payload); }
  std::string Order(const std::string& line) { return script->Order(line); }
  void ExpectOutput(const std::string& text) const;  // sooner or later

  TempDir folder;
  std::unique_ptr<Program> bus;
  std::unique_ptr<Host> host;
  std::unique_ptr<Script> script;
};

}  // namespace virtualbus
