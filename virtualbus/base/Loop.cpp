#include "base/Loop.h"

#include <poll.h>
#include <time.h>

#include <algorithm>
#include <vector>

namespace virtualbus {

void Loop::Watch(int fd, Callback on_readable) { watched_[fd] = std::move(on_readable); }

void Loop::Unwatch(int fd) { watched_.erase(fd); }

Loop::TimerId Loop::At(Time when, Callback on_due) {
  timers_.emplace(std::pair{when, ++last_timer_}, std::move(on_due));
  return last_timer_;
}

void Loop::Cancel(TimerId& timer) {
  std::erase_if(timers_, [&](const auto& entry) { return entry.first.second == timer; });
  timer = 0;
}

void Loop::Run() {
  while (running_) {
    Wait();
    RunDueTimers();
  }
}

// Descriptors come before timers: bytes that have arrived are read before a timer gives up waiting
// for them.
void Loop::Wait() {
  std::vector<pollfd> polled;
  for (const auto& [fd, callback] : watched_) polled.push_back({fd, POLLIN, 0});

  timespec timeout{};
  if (!timers_.empty()) {
    const auto wait =
        std::max(timers_.begin()->first.first - Clock::now(), Clock::duration::zero());
    const auto ns = std::chrono::duration_cast<std::chrono::nanoseconds>(wait).count();
    timeout = {ns / 1'000'000'000, static_cast<long>(ns % 1'000'000'000)};
  }
  if (ppoll(polled.data(), polled.size(), timers_.empty() ? nullptr : &timeout, nullptr) <= 0)
    return;

  for (const pollfd& entry : polled) {
    const auto found = entry.revents != 0 ? watched_.find(entry.fd) : watched_.end();
    if (found == watched_.end()) continue;
    const Callback callback = found->second;  // it may unwatch itself
    callback();
  }
}

void Loop::RunDueTimers() {
  const Time now = Clock::now();
  while (!timers_.empty() && timers_.begin()->first.first <= now) {
    const Callback callback = std::move(timers_.extract(timers_.begin()).mapped());
    callback();
  }
}

}  // namespace virtualbus
