// A bare condition: a Set wakes a waiting thread, and has no effect if none waits.
//
// Owned by the CThread that waits on it. One thread waits, any thread sets.
#pragma once

#include <pthread.h>

class CEventClass {
 public:
  CEventClass();
  ~CEventClass();
  CEventClass(const CEventClass&) = delete;
  CEventClass& operator=(const CEventClass&) = delete;

  // Wakes one waiting thread. Blocks while the mutex is held between Wait and Reset.
  void Set();

  // As Set, after noting a reason for WaitFor to find, under the event's mutex.
  template <class Note>
  void SetWith(Note note) {
    pthread_mutex_lock(&Mutex);
    note();
    pthread_mutex_unlock(&Mutex);
    pthread_cond_signal(&Condition);
  }

  // Waits for a Set. Returns true with the event's mutex held, until Reset.
  bool Wait();

  // As Wait, but checks for a reason before it waits and after every wake-up, under the
  // event's mutex. So a Set that came before the wait is not lost, and a wake-up without
  // a reason goes on waiting.
  template <class Reason>
  bool WaitFor(Reason reason) {
    pthread_mutex_lock(&Mutex);
    while (!reason()) pthread_cond_wait(&Condition, &Mutex);
    return true;
  }

  // Ends the critical section that Wait opened.
  void Reset();

  bool IsCreated() const { return Created; }

 private:
  pthread_cond_t Condition;
  pthread_mutex_t Mutex;
  bool Created = true;  // always: docs/design/contract.md
};
