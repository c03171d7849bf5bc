// A POSIX mutex that knows its owner.
//
// A class guards its data with one of these, through a CMutexGuard. Any thread may call
// every method.
#pragma once

#include <pthread.h>

#include <atomic>

class CMutexClass {
 public:
  CMutexClass();
  ~CMutexClass();
  CMutexClass(const CMutexClass&) = delete;
  CMutexClass& operator=(const CMutexClass&) = delete;

  // Returns at once if the calling thread owns the mutex already: nesting does
  // not count, and one Unlock releases however many Locks there were.
  void Lock();

  // Does nothing unless the calling thread is the owner.
  void Unlock();

  bool IsCreated() const { return Created; }

 private:
  pthread_mutex_t Mutex;
  std::atomic<pthread_t> Owner =
      0;                // 0 when free; a thread can find its own id here only if it holds the mutex
  bool Created = true;  // always: docs/design/contract.md
};

// Holds a CMutexClass for the length of a scope.
class CMutexGuard {
 public:
  explicit CMutexGuard(CMutexClass& mutex) : Mutex(mutex) { Mutex.Lock(); }
  ~CMutexGuard() { Mutex.Unlock(); }
  CMutexGuard(const CMutexGuard&) = delete;
  CMutexGuard& operator=(const CMutexGuard&) = delete;

 private:
  CMutexClass& Mutex;
};
