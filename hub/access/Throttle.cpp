#include "access/Throttle.h"

#include <algorithm>

#include "access/Network.h"

namespace hub::access {

namespace {

using std::chrono::seconds;

constexpr unsigned kDoublings = 6;      // 64 s, which is more than the longest pause
constexpr size_t kLongestAccount = 33;  // one more than an account can have
constexpr size_t kLongestAddress = 64;

seconds PauseAfter(unsigned tries) {
  if (tries < Throttle::kFreeTries) return seconds{0};
  const unsigned doublings = std::min(tries - Throttle::kFreeTries, kDoublings);
  return std::min(seconds{1U << doublings}, Throttle::kLongestPause);
}

}  // namespace

Throttle::Pair Throttle::PairOf(std::string_view account, std::string_view address) {
  return {std::string(account.substr(0, kLongestAccount)),
          NetworkOf(address).substr(0, kLongestAddress)};
}

std::optional<seconds> Throttle::Try(std::string_view account, std::string_view address,
                                     model::SteadyTime now) {
  const Pair pair = PairOf(account, address);
  auto found = pairs_.find(pair);
  if (found == pairs_.end()) {
    MakeRoom();
    found = pairs_.emplace(pair, Tries{0, now}).first;
  }
  Tries& tries = found->second;
  if (now - tries.last >= kForgotten) tries.count = 0;
  const auto next = tries.last + PauseAfter(tries.count);
  if (now < next) return std::chrono::ceil<seconds>(next - now);
  tries.count = std::min(tries.count + 1, kFreeTries + kDoublings);
  tries.last = now;
  return std::nullopt;
}

void Throttle::Clear(std::string_view account, std::string_view address) {
  pairs_.erase(PairOf(account, address));
}

void Throttle::MakeRoom() {
  if (pairs_.size() < kMostPairs) return;
  pairs_.erase(
      std::ranges::min_element(pairs_, {}, [](const auto& row) { return row.second.last; }));
}

}  // namespace hub::access
