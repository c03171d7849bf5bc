// Reads the daemon's log as it grows, through moves and new files of its name.
//
// The kernel says when there is something to read: nothing is done while the daemon is silent.
// Owned by the link; one thread.
#pragma once

#include <boost/asio/any_io_executor.hpp>
#include <boost/asio/awaitable.hpp>
#include <boost/asio/posix/stream_descriptor.hpp>
#include <chrono>
#include <functional>
#include <string>

#include "protocol/DaemonLog.h"
#include "protocol/LineReader.h"

namespace hub::link {

class LogFollower {
 public:
  struct Sinks {
    std::function<void(const protocol::LogLine& line)>
        old_line;                    // written before it could first be read
    std::function<void()> old_read;  // behind the old lines
    std::function<void(const protocol::LogLine& line)> line;
    std::function<void()> caught_up;  // behind the lines of one look
  };

  LogFollower(boost::asio::any_io_executor executor, std::string path, Sinks sinks);
  ~LogFollower();
  LogFollower(const LogFollower&) = delete;
  LogFollower& operator=(const LogFollower&) = delete;

  // Opens it if it can be opened now, and reads what is new.
  void Look();
  bool IsOpen() const { return file_ >= 0; }
  std::chrono::seconds AgeOfLastLine() const;

  // Looks whenever something has changed, for ever, or until Stop.
  boost::asio::awaitable<void> Run();
  void Stop();

 private:
  void Watch();
  void Open();
  void Close();
  bool IsReplaced() const;
  void ReadOn(const std::function<void(const protocol::LogLine& line)>& sink);

  std::string path_;
  Sinks sinks_;
  boost::asio::posix::stream_descriptor changes_;
  int folder_watch_ = -1;
  int file_watch_ = -1;
  int file_ = -1;
  bool was_open_ = false;
  protocol::LineReader reader_;
};

}  // namespace hub::link
