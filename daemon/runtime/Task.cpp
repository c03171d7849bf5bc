#include "runtime/Task.h"

TaskStatus_t CTask::GetStatus() {
  const CMutexGuard guard(Mutex);
  return Status;
}

void CTask::SetStatus(TaskStatus_t status) {
  const CMutexGuard guard(Mutex);
  Status = status;
}

pthread_t CTask::GetThreadId() {
  const CMutexGuard guard(Mutex);
  return ThreadId;
}

void CTask::SetThreadId(pthread_t id) {
  const CMutexGuard guard(Mutex);
  ThreadId = id;
}
