// The brake on trying passwords: five free tries an account and address, then a pause of 1 s that
// doubles up to 60 s. Other addresses and other accounts are not slowed, and a success clears
// nothing but its own pair. Whoever tries a fresh name each time has thirty free tries that were
// no success, whatever the name, and then one a second.
//
// The tables have an end: whoever fills them pays a hashed password for each row, and the row that
// rested longest goes first. Pure; one thread.
#pragma once

#include <chrono>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

#include "model/Clock.h"

namespace hub::access {

class Throttle {
 public:
  static constexpr unsigned kFreeTries = 5;
  static constexpr unsigned kFreeTriesOfANetwork = 30;
  static constexpr std::chrono::seconds kLongestPause{60};
  static constexpr size_t kMostPairs = 4096;  // and networks

  // After so long without a try a pair, or a network, begins anew; who waits for that tries less
  // often than who keeps to the pauses.
  static constexpr std::chrono::hours kForgotten{1};

  // Counts a try, before anybody knows how it ends: tries that run at once count as many. Or the
  // time until one may be made; such a one is not counted.
  std::optional<std::chrono::seconds> Try(std::string_view account, std::string_view address,
                                          model::SteadyTime now);

  // A try was a success.
  void Clear(std::string_view account, std::string_view address);

  size_t Pairs() const { return pairs_.size(); }

 private:
  using Pair = std::pair<std::string, std::string>;
  struct Tries {
    unsigned count = 0;
    model::SteadyTime last;
  };

  static Pair PairOf(std::string_view account, std::string_view address);

  std::map<Pair, Tries> pairs_;
  std::map<std::string, Tries> networks_;
};

}  // namespace hub::access
