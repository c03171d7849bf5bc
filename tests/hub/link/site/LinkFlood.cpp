#include "LinkFlood.h"

#include <cstdio>
#include <deque>
#include <random>

#include "kit/Bytes.h"

namespace hub::link {

namespace {

using Clock = std::chrono::steady_clock;

constexpr int kClients = 10;
constexpr size_t kMostUnanswered = 2000;
constexpr long kAllowedGrowthKilobytes = 1024;

}  // namespace

void LinkFlood::RunFlood(std::chrono::seconds time, const std::string& percent) {
  StartAll(percent);
  std::mt19937 chance(1);
  std::deque<std::future<Outcome>> unanswered;
  long memory = 0;
  const auto begin = Clock::now();
  while (Clock::now() < begin + time) {
    for (int client = 0; client < kClients; ++client) {
      if (chance() % 2 == 0) {
        const auto block = static_cast<uint8_t>(chance() % lamps_.size());
        lamps_[block] = static_cast<uint8_t>(chance());
        unanswered.push_back(link->SendLater(protocol::WriteBlock{kLamps, block, lamps_[block]}));
      } else {
        const auto block = static_cast<uint8_t>(chance() % servos_.size());
        servos_[block] = static_cast<uint8_t>(chance());
        unanswered.push_back(link->SendLater(protocol::WriteBlock{kServos, block, servos_[block]}));
      }
      ++sent_;
    }
    while (unanswered.size() > kMostUnanswered) {
      EXPECT_EQ(unanswered.front().get(), Outcome::kAccepted);
      unanswered.pop_front();
    }
    if (memory == 0 && Clock::now() > begin + time / 4) memory = daemon.ResidentKilobytes();
    std::this_thread::sleep_for(std::chrono::milliseconds(1));
  }
  const auto end = Clock::now();
  for (auto& outcome : unanswered) EXPECT_EQ(outcome.get(), Outcome::kAccepted);
  const auto answered = Clock::now();
  EXPECT_TRUE(WaitUntil([this] { return IsShown(); }));
  const auto shown = Clock::now();
  const auto counters = link->Count();
  const auto milliseconds = [](auto span) {
    return static_cast<long>(std::chrono::duration_cast<std::chrono::milliseconds>(span).count());
  };
  std::printf(
      "SPEED=%s, %ld s: %ld sent, %lu acted on, %lu merged; qelm %ld KiB after a quarter, %ld at "
      "the end; last receipt %ld ms after the last command, on the bus %ld ms later; "
      "%d exchanges timed out\n",
      percent.c_str(), static_cast<long>(time.count()), sent_, counters.commands, counters.merged,
      memory, daemon.ResidentKilobytes(), milliseconds(answered - end),
      milliseconds(shown - answered), ExchangeTimeouts());
  if (daemon.Instrumented()) return;
  EXPECT_LE(daemon.ResidentKilobytes(), memory + kAllowedGrowthKilobytes);
}

bool LinkFlood::IsShown() {
  const std::string lamps = "Lines " + ::Hex({lamps_.begin(), lamps_.end()});
  const std::string servos = "Positions " + ::Hex({servos_.begin(), servos_.end()});
  return Bus("show 5").find(lamps) != std::string::npos &&
         Bus("show 0").find(servos) != std::string::npos;
}

}  // namespace hub::link
