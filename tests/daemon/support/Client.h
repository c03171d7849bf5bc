// A TCP client of this host.
#pragma once

#include <cstddef>
#include <string>

// A port nothing listens on. Test programs that run side by side find different ones.
int FreePort();

class Client {
 public:
  explicit Client(int port);
  ~Client();
  Client(const Client&) = delete;
  Client& operator=(const Client&) = delete;

  bool IsConnected() const { return Connected; }
  void Send(const std::string& bytes) const;

  // So many bytes, fewer where the connection ends before.
  std::string Receive(std::size_t count) const;

  // Waits for the end of the connection; false where data comes instead.
  bool IsDropped() const;

  // Nothing has come.
  bool HasNothing() const;

  int LocalPort() const;

 private:
  int Fd;
  bool Connected;
};
