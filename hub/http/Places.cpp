#include "http/Places.h"

#include <algorithm>
#include <utility>

#include "access/Network.h"

namespace hub::http {

namespace {

Place PlaceAmong(size_t count, size_t most) {
  if (count < most) return Place::kFree;
  return count < most + Places::kMostTurnedAway ? Place::kNone : Place::kNotAWord;
}

constexpr char kUnixSocket[] = "unix";

std::string NetworkOf(const Peer& peer) {
  return peer.is_local ? kUnixSocket : access::NetworkOf(peer.address);
}

}  // namespace

Places::Places(size_t most, std::vector<std::string> proxies)
    : most_(most), proxies_(std::move(proxies)) {}

Place Places::For(const Peer& peer) const {
  const size_t local = CountOf(kUnixSocket);
  if (peer.is_local) return PlaceAmong(local, kMostLocal);
  const Place among_all = PlaceAmong(count_ - local, most_);
  if (SpeaksForMany(peer)) return among_all;
  const size_t half = (most_ + 1) / 2;
  return std::max(among_all, PlaceAmong(CountOf(NetworkOf(peer)), half));
}

void Places::Enter(const Peer& peer) {
  ++count_;
  ++networks_[NetworkOf(peer)];
}

void Places::Leave(const Peer& peer) {
  --count_;
  const auto network = networks_.find(NetworkOf(peer));
  if (--network->second == 0) networks_.erase(network);
}

bool Places::SpeaksForMany(const Peer& peer) const {
  return access::IsLoopback(peer.address) ||
         std::ranges::any_of(proxies_, [&peer](const std::string& proxy) {
           return access::ParseAddress(proxy) == peer.address;
         });
}

size_t Places::CountOf(const std::string& network) const {
  const auto found = networks_.find(network);
  return found == networks_.end() ? 0 : found->second;
}

}  // namespace hub::http
