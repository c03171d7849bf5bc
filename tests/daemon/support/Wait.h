// Waiting is always for a condition. The bound is one that only a hung program
// reaches, also on a loaded machine under a sanitizer.
#pragma once

#include <chrono>
#include <thread>

template <class Condition>
bool WaitUntil(Condition holds) {
  const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(30);
  while (!holds()) {
    if (std::chrono::steady_clock::now() > deadline) return false;
    std::this_thread::sleep_for(std::chrono::milliseconds(1));
  }
  return true;
}
