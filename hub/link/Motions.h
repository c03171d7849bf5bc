// Outputs that move by themselves: pulses on their way back, ramps on their way there.
//
// A pulse is a ramp of one step. A channel is in one motion at most; the last one that was asked
// for counts. Owned by the link; one thread.
#pragma once

#include <boost/asio/any_io_executor.hpp>
#include <boost/asio/awaitable.hpp>
#include <boost/asio/steady_timer.hpp>
#include <chrono>
#include <cstdint>
#include <functional>
#include <list>
#include <memory>
#include <optional>
#include <vector>

namespace hub::link {

// What a channel is to become, in the byte or bit of the bus.
struct Target {
  unsigned number = 0;  // of the channel
  uint8_t raw = 0;
};

class Motions {
 public:
  // Channels of one card take these values, now.
  using Sink = std::function<void(unsigned address, const std::vector<Target>& targets)>;

  struct Path {
    unsigned number = 0;  // of the channel
    uint8_t from = 0;
    uint8_t to = 0;
  };

  Motions(boost::asio::any_io_executor executor, Sink sink)
      : executor_(std::move(executor)), sink_(std::move(sink)) {}
  ~Motions() { EndAll(); }
  Motions(const Motions&) = delete;
  Motions& operator=(const Motions&) = delete;

  // From `from`, where the channels are, to `to`, in so many steps.
  void Start(unsigned address, std::vector<Path> paths, std::chrono::milliseconds time, int steps);
  void End(unsigned address, unsigned number);
  void EndAll();

  // Where a channel that moves will be in the end.
  std::optional<uint8_t> Goal(unsigned address, unsigned number) const;

  // Even steps that a servo can follow, none of them empty.
  static int StepsOf(const std::vector<Path>& paths, std::chrono::milliseconds time);

 private:
  struct Motion {
    unsigned address;
    std::vector<Path> paths;  // empty: over
    std::chrono::steady_clock::time_point begin;
    std::chrono::milliseconds time;
    int steps;
    boost::asio::steady_timer timer;
  };

  static boost::asio::awaitable<void> Run(Motions* motions, std::shared_ptr<Motion> motion);
  void Step(const Motion& motion, int step) const;

  boost::asio::any_io_executor executor_;
  Sink sink_;
  std::list<std::shared_ptr<Motion>> motions_;
};

}  // namespace hub::link
