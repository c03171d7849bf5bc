// A test waits for a condition, never for a time. The bound is one that only a hung
// program reaches, also on a busy machine under a sanitizer.
#pragma once

#include <chrono>
#include <thread>

inline constexpr std::chrono::seconds kPatience{90};

// Looks again and again; false when the condition never held.
template <typename Condition>
bool WaitUntil(Condition holds, std::chrono::milliseconds bound = kPatience) {
  const auto deadline = std::chrono::steady_clock::now() + bound;
  while (!holds()) {
    if (std::chrono::steady_clock::now() > deadline) return false;
    std::this_thread::sleep_for(std::chrono::milliseconds(2));
  }
  return true;
}
