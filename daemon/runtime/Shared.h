// Access to the plain fields that two threads share without a lock.
//
// The fields stay plain, so that the records can be copied; these functions make each
// access atomic. Flags, delays and data bytes that stand alone are loaded and stored. A
// field that announces others (a session's State, the first byte of QueryReply) is
// published and observed.
#pragma once

#include <atomic>

// C++20 has no atomic_ref of a const object; reading one through it changes nothing.
template <class T>
std::atomic_ref<T> SharedRef(const T& field) {
  return std::atomic_ref<T>(
      const_cast<T&>(field));  // NOLINT(cppcoreguidelines-pro-type-const-cast)
}

template <class T>
T LoadShared(const T& field) {
  return SharedRef(field).load(std::memory_order_relaxed);
}

template <class T>
void StoreShared(T& field, T value) {
  SharedRef(field).store(value, std::memory_order_relaxed);
}

// Sees everything that was written before the value was published.
template <class T>
T Observe(const T& field) {
  return SharedRef(field).load(std::memory_order_acquire);
}

template <class T>
void Publish(T& field, T value) {
  SharedRef(field).store(value, std::memory_order_release);
}

// Publishes `to` if the field still holds `from`; otherwise changes nothing and returns false.
template <class T>
bool PublishIf(T& field, T from, T to) {
  return SharedRef(field).compare_exchange_strong(from, to, std::memory_order_acq_rel);
}
