// How long to wait before the next attempt: the first time, doubling to the longest, each up to a
// quarter shorter by chance, so that many hubs that lost the same thing do not come back in one
// moment. Pure but for the chance.
#pragma once

#include <chrono>
#include <random>

namespace hub::link {

class Backoff {
 public:
  explicit Backoff(unsigned seed = std::random_device{}(),
                   std::chrono::milliseconds longest = std::chrono::seconds(30),
                   std::chrono::milliseconds first = std::chrono::seconds(1))
      : longest_(longest), first_(first), next_(first), chance_(seed) {}

  std::chrono::milliseconds Next();
  void Reset() { next_ = first_; }

 private:
  std::chrono::milliseconds longest_;
  std::chrono::milliseconds first_;
  std::chrono::milliseconds next_;
  std::minstd_rand chance_;
};

}  // namespace hub::link
