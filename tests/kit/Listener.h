// The serving end of TCP, for a test that plays a server.
#pragma once

#include "kit/Stream.h"

class Listener {
 public:
  explicit Listener(int port = 0);  // 0: the system chooses
  ~Listener();
  Listener(const Listener&) = delete;
  Listener& operator=(const Listener&) = delete;

  int Port() const;
  // The next client; throws when none comes.
  Stream Accept();
  bool HasClient(std::chrono::milliseconds bound) const;  // waits for one, and leaves it there

 private:
  int fd_;
};
