// A second thread that does one thing, and whether it has got stuck in it.
#pragma once

#include <sys/syscall.h>
#include <unistd.h>

#include <atomic>
#include <fstream>
#include <functional>
#include <string>
#include <thread>

#include "support/Wait.h"

class Helper {
 public:
  explicit Helper(std::function<void()> work)
      : Thread([this, work] {
          Id = static_cast<int>(syscall(SYS_gettid));
          work();
          Done = true;
        }) {}
  ~Helper() { Join(); }
  Helper(const Helper&) = delete;
  Helper& operator=(const Helper&) = delete;

  void Join() {
    if (Thread.joinable()) Thread.join();
  }

  bool IsDone() const { return Done; }

  // True when the kernel has put the thread to sleep before its work was done.
  bool WaitUntilBlocked() const {
    WaitUntil([this] { return Done || IsAsleep(); });
    return !Done;
  }

 private:
  bool IsAsleep() const {
    if (Id == 0) return false;
    std::ifstream file("/proc/self/task/" + std::to_string(Id) + "/stat");
    std::string stat;
    std::getline(file, stat);
    const std::size_t name_end = stat.rfind(')');
    return name_end != std::string::npos && stat.compare(name_end, 3, ") S") == 0;
  }

  std::atomic<bool> Done{false};
  std::atomic<int> Id{0};
  std::thread Thread;
};
