#include "link/Motions.h"

#include <algorithm>
#include <boost/asio/co_spawn.hpp>
#include <boost/asio/redirect_error.hpp>
#include <boost/asio/use_awaitable.hpp>
#include <cstdlib>
#include <utility>

#include "model/Fault.h"

namespace hub::link {

namespace asio = boost::asio;

namespace {

constexpr std::chrono::milliseconds kShortestStep{20};

uint8_t ValueAt(const Motions::Path& path, int step, int steps) {
  return static_cast<uint8_t>(path.from + (path.to - path.from) * step / steps);
}

}  // namespace

int Motions::StepsOf(const std::vector<Path>& paths, std::chrono::milliseconds time) {
  int longest = 1;
  for (const Path& path : paths) longest = std::max(longest, std::abs(path.to - path.from));
  return std::clamp(static_cast<int>(time / kShortestStep), 1, longest);
}

void Motions::Start(unsigned address, std::vector<Path> paths, std::chrono::milliseconds time,
                    int steps) {
  for (const Path& path : paths) End(address, path.number);
  motions_.push_back(
      std::make_shared<Motion>(Motion{address, std::move(paths), std::chrono::steady_clock::now(),
                                      time, steps, asio::steady_timer(executor_)}));
  asio::co_spawn(executor_, Run(this, motions_.back()), model::EndOnFault{});
}

// Who waits may come back when `motions` is no more: then the motion is over.
asio::awaitable<void> Motions::Run(Motions* motions, std::shared_ptr<Motion> motion) {
  boost::system::error_code ignored;
  auto token = asio::redirect_error(asio::use_awaitable, ignored);
  for (int step = 1; step <= motion->steps; ++step) {
    motion->timer.expires_at(motion->begin + motion->time * step / motion->steps);
    co_await motion->timer.async_wait(token);
    if (motion->paths.empty()) co_return;
    if (step == motion->steps) motions->motions_.remove(motion);
    motions->Step(*motion, step);
  }
}

void Motions::Step(const Motion& motion, int step) const {
  std::vector<Target> targets;
  for (const Path& path : motion.paths)
    targets.push_back({path.number, ValueAt(path, step, motion.steps)});
  sink_(motion.address, targets);
}

void Motions::End(unsigned address, unsigned number) {
  for (auto each = motions_.begin(); each != motions_.end();) {
    Motion& motion = **each;
    if (motion.address == address)
      std::erase_if(motion.paths, [number](const Path& path) { return path.number == number; });
    if (motion.paths.empty()) {
      motion.timer.cancel();
      each = motions_.erase(each);
    } else {
      ++each;
    }
  }
}

void Motions::EndAll() {
  for (const auto& motion : std::exchange(motions_, {})) {
    motion->paths.clear();
    motion->timer.cancel();
  }
}

std::optional<uint8_t> Motions::Goal(unsigned address, unsigned number) const {
  for (const auto& motion : motions_) {
    if (motion->address != address) continue;
    for (const Path& path : motion->paths)
      if (path.number == number) return path.to;
  }
  return std::nullopt;
}

}  // namespace hub::link
