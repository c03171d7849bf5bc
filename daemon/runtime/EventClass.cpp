#include "runtime/EventClass.h"

CEventClass::CEventClass() : Condition{}, Mutex{} {
  pthread_cond_init(&Condition, nullptr);
  pthread_mutex_init(&Mutex, nullptr);
}

CEventClass::~CEventClass() {
  pthread_cond_destroy(&Condition);
  // A thread whose last pass failed ends with the mutex held; it is left as it is.
  if (pthread_mutex_trylock(&Mutex) != 0) return;
  pthread_mutex_unlock(&Mutex);
  pthread_mutex_destroy(&Mutex);
}

void CEventClass::Set() {
  SetWith([] {});
}

bool CEventClass::Wait() {
  pthread_mutex_lock(&Mutex);
  pthread_cond_wait(&Condition, &Mutex);
  return true;
}

void CEventClass::Reset() { pthread_mutex_unlock(&Mutex); }
