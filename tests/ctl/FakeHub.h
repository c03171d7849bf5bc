// A hub that says what a test tells it to: HTTP/1.1 and a WebSocket, on a Unix socket and on a TCP
// port. It shares no line with the program under test nor with the real hub.
#pragma once

#include <map>
#include <mutex>
#include <optional>
#include <string>
#include <thread>
#include <vector>

#include "kit/TempDir.h"

class FakeHub {
 public:
  struct Request {
    std::string line;     // "PUT /api/channels/5.0"
    std::string headers;  // as they came
    std::string body;
  };

  FakeHub();
  ~FakeHub();
  FakeHub(const FakeHub&) = delete;
  FakeHub& operator=(const FakeHub&) = delete;

  // To a request line; anything else is a 404.
  void Answer(const std::string& line, const std::string& body, int status = 200);
  // Whoever asks this has no answer, and no connection any more.
  void HangUpOn(const std::string& line) { Answer(line, {}, kHangUp); }
  // What goes to whoever subscribes; the connection is closed behind it.
  void Feed(std::vector<std::string> messages);
  // The same to the first one; who comes then gets the next.
  void FeedOnce(std::vector<std::string> messages, std::vector<std::string> next);

  // What came, in order.
  std::vector<Request> Requests();
  std::string LastBody(const std::string& line);  // of the last such request; "none came"
  bool Got(const std::string& line);

  std::string SocketPath() const { return folder_.Path("hub.sock"); }
  std::string Url() const { return "http://127.0.0.1:" + std::to_string(port_); }

 private:
  static constexpr int kHangUp = 0;  // in place of a status

  struct Scripted {
    int status;
    std::string body;
  };

  void Accept(int listener);
  void Serve(int fd);
  void ServeFeed(int fd, const Request& request);
  Scripted ScriptFor(const std::string& line);

  TempDir folder_;
  int unix_listener_ = -1;
  int tcp_listener_ = -1;
  int port_ = 0;
  std::mutex lock_;  // of all below
  std::map<std::string, Scripted> answers_;
  std::vector<std::string> feed_;
  std::optional<std::vector<std::string>> next_feed_;
  std::vector<Request> requests_;
  std::vector<int> open_;
  std::vector<std::jthread> threads_;
};
