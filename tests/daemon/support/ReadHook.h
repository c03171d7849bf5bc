// Something that happens at every read of the code under test, right before it and in
// the same thread: the moment is exact, and no test depends on which of two threads
// is faster. One at a time.
#pragma once

#include <functional>

class ReadHook {
 public:
  explicit ReadHook(std::function<void()> action);
  ~ReadHook();
  ReadHook(const ReadHook&) = delete;
  ReadHook& operator=(const ReadHook&) = delete;

  void Run() const { action_(); }

 private:
  std::function<void()> action_;
};
