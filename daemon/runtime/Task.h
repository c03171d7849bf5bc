// A unit of work that can be handed to an event-driven CThread.
//
// Owned by whoever hands it over, who keeps it until it is completed. The thread
// runs it; any thread may ask for its status.
#pragma once

#include <pthread.h>

#include "runtime/MutexClass.h"

enum TaskStatus_t : int {
  kTaskNew = 0,
  kTaskQueued = 1,
  kTaskRunning = 2,
  kTaskCompleted = 3,
};

class CTask {
 public:
  virtual bool Run() = 0;  // the work; false ends the thread that runs it
  virtual ~CTask() = default;

  TaskStatus_t GetStatus();
  void SetStatus(TaskStatus_t status);
  pthread_t GetThreadId();
  void SetThreadId(pthread_t id);

 private:
  TaskStatus_t Status = kTaskNew;
  pthread_t ThreadId = 0;  // the thread it was handed to
  CMutexClass Mutex;       // guards both
};
