// Access to the plain fields that two threads share without a lock.
//
// The records stay plain, so that they can be copied and laid out as they are;
// what makes the access atomic is how it is written. Relaxed access serves flags,
// delays and data bytes that stand alone. A field that announces other fields
// (a session's State, the first byte of QueryReply) is published and observed.
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

// Publishes `to` only where `from` still stands; false leaves the field alone.
template <class T>
bool PublishIf(T& field, T from, T to) {
  return SharedRef(field).compare_exchange_strong(from, to, std::memory_order_acq_rel);
}
