// How many connections there are, and whether one more has a place among them.
//
// The Unix socket has places of its own, so that a crowd on the network keeps no administrator
// out. A crowd of one network has half of the others at most; this machine and the proxies, which
// speak for many, may have all. Pure; one thread.
#pragma once

#include <cstddef>
#include <map>
#include <string>
#include <vector>

#include "http/Message.h"

namespace hub::http {

enum class Place {
  kFree,
  kNone,      // the connection hears why
  kNotAWord,  // too many hear that already
};

class Places {
 public:
  static constexpr size_t kMostLocal = 64;
  static constexpr size_t kMostTurnedAway = 32;

  Places(size_t most, std::vector<std::string> proxies);

  Place For(const Peer& peer) const;
  void Enter(const Peer& peer);
  void Leave(const Peer& peer);

 private:
  bool SpeaksForMany(const Peer& peer) const;
  size_t CountOf(const std::string& network) const;

  const size_t most_;
  const std::vector<std::string> proxies_;
  size_t count_ = 0;
  std::map<std::string, size_t> networks_;  // none with 0
};

}  // namespace hub::http
