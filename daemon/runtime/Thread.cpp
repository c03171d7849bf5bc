#include "runtime/Thread.h"

#include <cstdio>
#include <new>

#include "runtime/Pause.h"
#include "runtime/Task.h"

CThread::CThread() : Stack(new (std::nothrow) void*[kCapacity]) {
  if (!Stack) {
    Fault(kNoStack);
  } else if (!Mutex.IsCreated()) {
    std::perror("mutex creation failed");
    Fault(kNoMutex);
  } else if (!Wake.IsCreated()) {
    std::perror("event creation failed");
    Fault(kNoEvent);
  } else {
    Start();
  }
}

CThread::~CThread() {
  Stop();
  if (Handle != 0) pthread_join(Handle, nullptr);
}

bool CThread::OnTask(void* object) {
  auto* task = static_cast<CTask*>(object);
  task->SetStatus(kTaskRunning);
  const bool good = task->Run();
  task->SetStatus(kTaskCompleted);
  return good;
}

bool CThread::OnTask() {
  std::printf("\nthread is alive\n");  // no thread of the daemon: docs/design/contract.md
  return true;
}

bool CThread::Start() {
  const CMutexGuard guard(Mutex);
  if (Lives()) return true;
  if (Handle != 0) pthread_join(Handle, nullptr);  // an earlier run that has ended
  Handle = 0;
  ThreadId = 0;
  Errors &= ~static_cast<unsigned>(kNoThread);

  pthread_attr_t attributes;
  pthread_attr_init(&attributes);
  if (StackSize != 0) pthread_attr_setstacksize(&attributes, StackSize);
  const int error = pthread_create(&Handle, &attributes, &CThread::Kernel, this);
  pthread_attr_destroy(&attributes);
  if (error == 0) return true;

  Handle = 0;
  Fault(kNoThread);
  std::fprintf(stderr, "error: could not create thread, pthread_create failed (%d)!\n", error);
  return false;
}

void CThread::EndAfterPass() {
  // Wait until the thread has begun: only then does it set Running, and would undo this.
  while (!HasBegun()) Sleep(GetIdle());
  const CMutexGuard guard(Mutex);
  Running = false;
}

void CThread::Stop() {
  EndAfterPass();
  if (!IsAlive()) return;
  // A thread whose pass has failed ends by itself and keeps the event's mutex: an Event
  // would wait for it for ever.
  const int state = ThreadState();
  if (state != kThreadShutting && state != kThreadDown) Event(static_cast<void*>(nullptr));
  while (IsAlive()) Sleep(GetIdle());
}

bool CThread::Event(void* object) {
  {
    const CMutexGuard guard(Mutex);
    if (Type == kIntervalDriven) {
      Fault(kIllegalEvent);
      return false;
    }
  }
  if (!Push(object)) return false;
  WakeUp();
  return true;
}

bool CThread::Event(CTask* task) {
  {
    const CMutexGuard guard(Mutex);
    task->SetThreadId(ThreadId);
  }
  // Set the status before the thread can see the task: it may run it at once.
  const TaskStatus_t before = task->GetStatus();
  task->SetStatus(kTaskQueued);
  if (Event(static_cast<void*>(task))) return true;
  task->SetStatus(before);
  return false;
}

bool CThread::Push(void* object) {
  if (object == nullptr) return true;
  const CMutexGuard guard(Mutex);
  if (Count + 1 >= Capacity) return false;
  Stack[static_cast<std::size_t>(Count++)] = object;
  return true;
}

void CThread::Pop() {
  const CMutexGuard guard(Mutex);
  Current = Stack[static_cast<std::size_t>(--Count)];
}

bool CThread::Empty() {
  const CMutexGuard guard(Mutex);
  return Count == 0;
}

int CThread::GetEventsPending() {
  const CMutexGuard guard(Mutex);
  return Count;
}

int CThread::ThreadState() {
  const CMutexGuard guard(Mutex);
  return RunState;
}

void CThread::SetIdle(long idle) {
  const CMutexGuard guard(Mutex);
  Idle = idle;
}

void CThread::SetThreadType(ThreadType_t type, long idle) {
  {
    const CMutexGuard guard(Mutex);
    Idle = idle;
    if (Type == type) return;
    Type = type;
  }
  WakeUp();
}

void CThread::SetPriority(long /*priority*/) {}  // does nothing: docs/design/contract.md

bool CThread::PingThread(long timeout) {
  long elapsed = 0;
  while (!IsRunning()) {
    if (timeout > 0 && elapsed > timeout) return false;
    const unsigned int idle = GetIdle();
    Sleep(idle);
    elapsed += static_cast<long>(idle);
  }
  return true;
}

unsigned CThread::GetErrors() {
  const CMutexGuard guard(Mutex);
  return Errors;
}

void* CThread::Kernel(void* self) {
  static_cast<CThread*>(self)->RunKernel();
  return nullptr;
}

void CThread::RunKernel() {
  {
    const CMutexGuard guard(Mutex);
    Running = true;
    ThreadId = pthread_self();
    EnterWaiting();
  }
  while (true) {
    const ThreadType_t type = GetType();
    if (type == kEventDriven) Wake.WaitFor([this] { return HasWakeUp(); });
    const bool good = KernelPass();
    // A pass that failed keeps the event's mutex; one that Stop ended releases it.
    if (type == kEventDriven && (good || !IsRunning())) Wake.Reset();
    if (!good) break;
    if (GetType() == kIntervalDriven) Sleep(GetIdle());
  }
  const CMutexGuard guard(Mutex);
  RunState = kThreadDown;
  Running = false;
}

bool CThread::KernelPass() {
  {
    const CMutexGuard guard(Mutex);
    RunState = kThreadBusy;
  }
  if (!IsRunning()) return EndPass(false);
  if (Empty()) return EndPass(OnTask());
  while (!Empty()) {
    Pop();
    if (!OnTask(Current)) return EndPass(false);
  }
  return EndPass(true);
}

bool CThread::EndPass(bool good) {
  const CMutexGuard guard(Mutex);
  Current = nullptr;
  if (good)
    EnterWaiting();
  else
    RunState = kThreadShutting;
  return good;
}

// The mutex is held.
void CThread::EnterWaiting() { RunState = kThreadWaiting; }

// Every wake-up is followed by a pass, also one that came while a pass was running.
bool CThread::HasWakeUp() {
  if (WakeUps == WakeUpsSeen) return false;
  WakeUpsSeen = WakeUps;
  return true;
}

// Not to be called with the thread's mutex held: a pass takes it while it holds the event's.
void CThread::WakeUp() {
  Wake.SetWith([this] { ++WakeUps; });
}

// The mutex is held, or there is no thread yet. A thread that has ended
// stays down, or Stop would wait for it for ever.
void CThread::Fault(ThreadError error) {
  Errors |= error;
  if (error != kIllegalEvent || RunState != kThreadDown) RunState = kThreadFault;
}

bool CThread::IsRunning() {
  const CMutexGuard guard(Mutex);
  return Running;
}

bool CThread::IsAlive() {
  const CMutexGuard guard(Mutex);
  return Lives();
}

// Created and not yet down; the mutex is held.
bool CThread::Lives() const { return Handle != 0 && (ThreadId == 0 || RunState != kThreadDown); }

bool CThread::HasBegun() {
  const CMutexGuard guard(Mutex);
  return Handle == 0 || ThreadId != 0;
}

ThreadType_t CThread::GetType() {
  const CMutexGuard guard(Mutex);
  return Type;
}

unsigned int CThread::GetIdle() {
  const CMutexGuard guard(Mutex);
  return Idle > 0 ? static_cast<unsigned int>(Idle) : 0;
}
