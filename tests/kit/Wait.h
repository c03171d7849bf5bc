// Waiting in tests is always for a condition, with a bound that only a hung
// program reaches: it is wide enough for a loaded machine under a sanitizer.
#pragma once

#include <chrono>
#include <thread>

inline constexpr std::chrono::seconds kPatience{30};

template <typename Condition>
bool WaitUntil(Condition holds, std::chrono::milliseconds bound = kPatience) {
  const auto deadline = std::chrono::steady_clock::now() + bound;
  while (!holds()) {
    if (std::chrono::steady_clock::now() > deadline) return false;
    std::this_thread::sleep_for(std::chrono::milliseconds(2));
  }
  return true;
}
