// Outputs that move by themselves: pulses on their way back, ramps on their way there.
//
// A pulse is a ramp of one step. A channel is in one motion at most; the last one that was asked
// for counts, unless it turns out that it was never taken: then the one before goes on.
//
//   Plan ──> planned ──Begin──> begun ──> over
//
// Owned by the link; one thread.
#pragma once

#include <boost/asio/any_io_executor.hpp>
#include <boost/asio/awaitable.hpp>
#include <boost/asio/steady_timer.hpp>
#include <chrono>
#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <utility>

namespace hub::link {

// What a channel is to become, in the byte or bit of the bus.
struct Target {
  unsigned number = 0;  // of the channel
  uint8_t raw = 0;
};

class Motions {
 public:
  // A channel of a card takes this value, now.
  using Sink = std::function<void(unsigned address, Target target)>;

  struct Path {
    uint8_t from = 0;
    uint8_t to = 0;
  };

  struct Motion;
  using Moving = std::shared_ptr<Motion>;

  Motions(boost::asio::any_io_executor executor, Sink sink)
      : executor_(std::move(executor)), sink_(std::move(sink)) {}
  ~Motions() { EndAll(); }
  Motions(const Motions&) = delete;
  Motions& operator=(const Motions&) = delete;

  // From `from`, where the channel is put by others, to `to`, in so many steps.
  Moving Plan(unsigned address, unsigned number, Path path, std::chrono::milliseconds time,
              int steps);
  void Begin(const Moving& moving);  // its time runs from now
  void End(const Moving& moving);

  // The channel stands still: what moved it, or was to, in case it is to go on; null: nothing.
  Moving Halt(unsigned address, unsigned number);
  void GoOn(const Moving& halted);

  void EndAll();

  // Where a channel that moves, or is to, will be in the end.
  std::optional<uint8_t> Goal(unsigned address, unsigned number) const;

  // Even steps that a servo can follow, none of them empty.
  static int StepsOf(Path path, std::chrono::milliseconds time);

 private:
  using Place = std::pair<unsigned, unsigned>;  // address and number

  bool IsMoving(const Motion& motion) const;
  void Start(const Moving& moving);
  static boost::asio::awaitable<void> Run(Motions* motions, Moving moving, int start);

  boost::asio::any_io_executor executor_;
  Sink sink_;
  std::map<Place, Moving> motions_;  // those that are halted are not in it
};

}  // namespace hub::link
