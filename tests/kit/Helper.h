// A second thread that does one thing, and whether it has got stuck in it.
#pragma once

#include <sys/syscall.h>
#include <unistd.h>

#include <atomic>
#include <fstream>
#include <functional>
#include <string>
#include <thread>

#include "kit/Wait.h"

class Helper {
 public:
  explicit Helper(std::function<void()> work)
      : thread_([this, work] {
          id_ = static_cast<int>(syscall(SYS_gettid));
          work();
          done_ = true;
        }) {}
  ~Helper() { Join(); }
  Helper(const Helper&) = delete;
  Helper& operator=(const Helper&) = delete;

  void Join() {
    if (thread_.joinable()) thread_.join();
  }

  bool IsDone() const { return done_; }

  // True when the kernel has put the thread to sleep before its work was done.
  bool WaitUntilBlocked() const {
    WaitUntil([this] { return done_ || IsAsleep(); });
    return !done_;
  }

 private:
  bool IsAsleep() const {
    if (id_ == 0) return false;
    std::ifstream file("/proc/self/task/" + std::to_string(id_) + "/stat");
    std::string stat;
    std::getline(file, stat);
    const std::size_t name_end = stat.rfind(')');
    return name_end != std::string::npos && stat.compare(name_end, 3, ") S") == 0;
  }

  std::atomic<bool> done_{false};
  std::atomic<int> id_{0};
  std::thread thread_;
};
