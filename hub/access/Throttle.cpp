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

seconds PauseOfANetworkAfter(unsigned tries) {
  return seconds{tries < Throttle::kFreeTriesOfANetwork ? 0 : 1};
}

// The row of that key, which begins anew after a long rest.
template <class Table>
typename Table::mapped_type& RowOf(Table& table, const typename Table::key_type& key,
                                   model::SteadyTime now) {
  auto found = table.find(key);
  if (found == table.end()) {
    if (table.size() >= Throttle::kMostPairs)
      table.erase(
          std::ranges::min_element(table, {}, [](const auto& row) { return row.second.last; }));
    found = table.emplace(key, typename Table::mapped_type{0, now}).first;
  }
  if (now - found->second.last >= Throttle::kForgotten) found->second.count = 0;
  return found->second;
}

}  // namespace

Throttle::Pair Throttle::PairOf(std::string_view account, std::string_view address) {
  return {std::string(account.substr(0, kLongestAccount)),
          NetworkOf(address).substr(0, kLongestAddress)};
}

std::optional<seconds> Throttle::Try(std::string_view account, std::string_view address,
                                     model::SteadyTime now) {
  const Pair pair = PairOf(account, address);
  // First, so that a name that may not be tried costs no row.
  Tries& of_network = RowOf(networks_, pair.second, now);
  auto next = of_network.last + PauseOfANetworkAfter(of_network.count);
  if (now < next) return std::chrono::ceil<seconds>(next - now);
  Tries& tries = RowOf(pairs_, pair, now);
  next = tries.last + PauseAfter(tries.count);
  if (now < next) return std::chrono::ceil<seconds>(next - now);
  tries = {std::min(tries.count + 1, kFreeTries + kDoublings), now};
  of_network = {of_network.count + 1, now};
  return std::nullopt;
}

void Throttle::Clear(std::string_view account, std::string_view address) {
  const Pair pair = PairOf(account, address);
  pairs_.erase(pair);
  const auto network = networks_.find(pair.second);
  if (network != networks_.end() && network->second.count > 0) --network->second.count;
}

}  // namespace hub::access
