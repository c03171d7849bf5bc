#include "link/Motions.h"

#include <algorithm>
#include <boost/asio/co_spawn.hpp>
#include <boost/asio/redirect_error.hpp>
#include <boost/asio/use_awaitable.hpp>
#include <cstdlib>

#include "model/Fault.h"

namespace hub::link {

namespace asio = boost::asio;

namespace {

constexpr std::chrono::milliseconds kShortestStep{20};

}  // namespace

struct Motions::Motion {
  enum class Phase { kPlanned, kBegun, kOver };

  Place place;
  Path path;
  std::chrono::milliseconds time;
  int steps;
  asio::steady_timer timer;
  Phase phase = Phase::kPlanned;
  std::chrono::steady_clock::time_point begin{};
  int step = 1;    // the next one
  int starts = 0;  // and halts: a coroutine from before the last one is not its any more
};

int Motions::StepsOf(Path path, std::chrono::milliseconds time) {
  const int longest = std::max(1, std::abs(path.to - path.from));
  return std::clamp(static_cast<int>(time / kShortestStep), 1, longest);
}

Motions::Moving Motions::Plan(unsigned address, unsigned number, Path path,
                              std::chrono::milliseconds time, int steps) {
  Halt(address, number);
  const Place place{address, number};
  const auto moving =
      std::make_shared<Motion>(Motion{place, path, time, steps, asio::steady_timer(executor_)});
  motions_[place] = moving;
  return moving;
}

void Motions::Begin(const Moving& moving) {
  if (moving->phase != Motion::Phase::kPlanned) return;
  moving->phase = Motion::Phase::kBegun;
  moving->begin = std::chrono::steady_clock::now();
  if (IsMoving(*moving)) Start(moving);
}

void Motions::End(const Moving& moving) {
  if (IsMoving(*moving)) Halt(moving->place.first, moving->place.second);
  moving->phase = Motion::Phase::kOver;
}

Motions::Moving Motions::Halt(unsigned address, unsigned number) {
  const auto found = motions_.extract({address, number});
  if (found.empty()) return nullptr;
  const Moving& halted = found.mapped();
  ++halted->starts;
  halted->timer.cancel();
  return halted;
}

void Motions::GoOn(const Moving& halted) {
  if (halted->phase == Motion::Phase::kOver) return;
  Halt(halted->place.first, halted->place.second);
  motions_[halted->place] = halted;
  if (halted->phase == Motion::Phase::kBegun) Start(halted);
}

void Motions::EndAll() {
  for (const auto& [place, moving] : std::exchange(motions_, {})) {
    moving->phase = Motion::Phase::kOver;
    moving->timer.cancel();
  }
}

std::optional<uint8_t> Motions::Goal(unsigned address, unsigned number) const {
  const auto found = motions_.find({address, number});
  if (found == motions_.end()) return std::nullopt;
  return found->second->path.to;
}

bool Motions::IsMoving(const Motion& motion) const {
  const auto found = motions_.find(motion.place);
  return found != motions_.end() && found->second.get() == &motion;
}

void Motions::Start(const Moving& moving) {
  asio::co_spawn(executor_, Run(this, moving, ++moving->starts), model::EndOnFault{});
}

// Who waits may come back when `motions` is no more: then the motion is over, or was halted.
asio::awaitable<void> Motions::Run(Motions* motions, Moving moving, int start) {
  boost::system::error_code ignored;
  auto token = asio::redirect_error(asio::use_awaitable, ignored);
  Motion& motion = *moving;
  while (motion.step <= motion.steps) {
    motion.timer.expires_at(motion.begin + motion.time * motion.step / motion.steps);
    co_await motion.timer.async_wait(token);
    if (motion.phase == Motion::Phase::kOver || motion.starts != start) co_return;
    const int way = motion.path.to - motion.path.from;
    const int value = motion.path.from + way * motion.step / motion.steps;
    if (motion.step++ == motion.steps) motions->End(moving);
    motions->sink_(motion.place.first, {motion.place.second, static_cast<uint8_t>(value)});
  }
}

}  // namespace hub::link
