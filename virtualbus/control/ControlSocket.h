// The control socket: any number of scripts, each sending lines and getting "ok" or "error: why" to
// each in turn. Lines that follow a wait are run when it has been answered.
#pragma once

#include <map>
#include <memory>
#include <string>

#include "bus/VirtualBus.h"
#include "control/ControlCommands.h"
#include "journal/FrameHistory.h"

namespace virtualbus {

class ControlSocket {
 public:
  explicit ControlSocket(VirtualBus& bus) : bus_(bus) {}
  ~ControlSocket();  // removes the socket
  ControlSocket(const ControlSocket&) = delete;
  ControlSocket& operator=(const ControlSocket&) = delete;

  Problem Listen(const std::string& path);

 private:
  struct Session {
    std::string input;
    uint64_t seen = 0;  // waits look only at frames from this number on
    FramePattern awaited;
    Loop::TimerId give_up = 0;  // ends the wait
    bool ended = false;         // the script sends no more
  };

  void OnConnect();
  void OnReadable(int fd);
  void RunLines(int fd);
  void RunLine(int fd, const std::string& line);
  void OnFrame();
  void CheckWaits();
  void EndWait(int fd, const Problem& problem);
  void Answer(int fd, const Problem& problem, const std::vector<std::string>& lines);
  void Close(int fd);

  VirtualBus& bus_;
  std::string path_;
  int listener_ = -1;
  FrameHistory history_;
  Loop::TimerId check_ = 0;
  std::map<int, Session> sessions_;
};

}  // namespace virtualbus
