// Who is in by which door, and what becomes of the commands for outputs that come in there: for
// the monitoring system. One thread.
#pragma once

#include <array>
#include <chrono>
#include <cstdint>
#include <string_view>

#include "access/Role.h"
#include "api/Problem.h"

namespace hub::api {

using access::Door;

inline constexpr std::array<std::string_view, 5> kDoorNames{"http", "local", "websocket", "text",
                                                            "broker"};

enum class Fate { kDone, kRefused, kTooFast, kUnavailable, kFailed };

inline constexpr std::array<std::string_view, 5> kFateNames{"done", "refused", "too_fast",
                                                            "unavailable", "failed"};

// With the broker.
struct Messages {
  uint64_t sent = 0;
  uint64_t heard = 0;
  uint64_t dropped = 0;  // events that it was not there for, or too slow
  uint64_t merged = 0;   // levels that took the place of one that was not sent yet
};

class Traffic {
 public:
  using Seconds = std::chrono::duration<double>;

  static constexpr std::array<double, 12> kReceiptBounds{0.0005, 0.001, 0.0025, 0.005, 0.01, 0.025,
                                                         0.05,   0.1,   0.25,   0.5,   1,    2.5};

  // How long commands took to be acted on.
  struct Receipts {
    std::array<uint64_t, kReceiptBounds.size()> up_to{};  // each counts those of the ones before it
    uint64_t count = 0;
    double sum = 0;  // seconds
  };

  // Nothing is wrong: the daemon's receipt came after this time.
  void Count(Door door, const Problem* problem, Seconds time);

  uint64_t Commands(Door door, Fate fate) const {
    return commands_[static_cast<size_t>(door)][static_cast<size_t>(fate)];
  }
  uint64_t Guests(Door door) const { return guests_[static_cast<size_t>(door)]; }
  const Receipts& ReceiptTimes() const { return receipts_; }

  Messages broker;

 private:
  friend class Guest;

  std::array<std::array<uint64_t, kFateNames.size()>, kDoorNames.size()> commands_{};
  std::array<uint64_t, kDoorNames.size()> guests_{};
  Receipts receipts_;
};

// A connection at a door, as long as it lives. The traffic outlives it.
class Guest {
 public:
  Guest(Traffic& traffic, Door door) : count_(traffic.guests_[static_cast<size_t>(door)]) {
    ++count_;
  }
  ~Guest() { --count_; }
  Guest(const Guest&) = delete;
  Guest& operator=(const Guest&) = delete;

 private:
  uint64_t& count_;
};

}  // namespace hub::api
