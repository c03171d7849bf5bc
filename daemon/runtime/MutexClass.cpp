#include "runtime/MutexClass.h"

CMutexClass::CMutexClass() : Mutex{} { pthread_mutex_init(&Mutex, nullptr); }

CMutexClass::~CMutexClass() {
  Lock();
  Unlock();
  pthread_mutex_destroy(&Mutex);
}

void CMutexClass::Lock() {
  const pthread_t self = pthread_self();
  if (Owner.load(std::memory_order_relaxed) == self) return;
  pthread_mutex_lock(&Mutex);
  Owner.store(self, std::memory_order_relaxed);
}

void CMutexClass::Unlock() {
  if (Owner.load(std::memory_order_relaxed) != pthread_self()) return;
  Owner.store(0, std::memory_order_relaxed);
  pthread_mutex_unlock(&Mutex);
}
