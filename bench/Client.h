// One end of a stream: a TCP port of a program, or the control socket of the bus.
#pragma once

#include <string>
#include <string_view>

class Client {
 public:
  static Client ToPort(int port);
  static Client ToPath(const std::string& path);
  ~Client();
  Client(Client&& other) noexcept;
  Client& operator=(const Client&) = delete;

  void Send(std::string_view bytes);
  // Everything up to and with the text; throws when it does not come.
  std::string ReadUntil(std::string_view text);
  std::string Read(std::size_t count);

 private:
  explicit Client(int fd) : fd_(fd) {}
  void ReadMore();

  int fd_;
  std::string waiting_;  // read and not asked for yet
};

// Somebody listens on the port, in this network namespace.
bool IsListening(int port);
