// Signals as events of the loop: the ones that end the program stop it in an orderly way.
#pragma once

#include <functional>

#include "base/Loop.h"

namespace virtualbus {

class Signals {
 public:
  explicit Signals(Loop& loop);
  ~Signals();
  Signals(const Signals&) = delete;
  Signals& operator=(const Signals&) = delete;

  void OnResize(Loop::Callback callback) { on_resize_ = std::move(callback); }

 private:
  void OnSignal();

  Loop& loop_;
  Loop::Callback on_resize_;
  int fd_ = -1;
};

}  // namespace virtualbus
