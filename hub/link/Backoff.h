// How long to wait before the next attempt: 1 s, doubling to the longest, each up to a quarter
// longer by chance, so that many hubs that lost the same thing do not come back in one moment. Pure
// but for the chance.
#pragma once

#include <chrono>
#include <random>

namespace hub::link {

class Backoff {
 public:
  explicit Backoff(unsigned seed = std::random_device{}(),
                   std::chrono::milliseconds longest = std::chrono::seconds(30))
      : longest_(longest), chance_(seed) {}

  std::chrono::milliseconds Next();
  void Reset() { next_ = kFirst; }

 private:
  static constexpr std::chrono::milliseconds kFirst{1000};

  std::chrono::milliseconds longest_;
  std::chrono::milliseconds next_ = kFirst;
  std::minstd_rand chance_;
};

}  // namespace hub::link
