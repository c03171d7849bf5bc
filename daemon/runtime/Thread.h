// CThread, the base of every worker thread.
//
// The constructor starts the thread, event-driven and waiting: before the derived
// constructor has run, no pass touches the derived object. A derived class that
// works at intervals calls SetThreadType as soon as it is ready for OnTask. A
// derived destructor calls Stop before it releases anything OnTask uses.
//
// Owned by whoever constructs it. Every method may be called from any thread but
// the thread itself.
#pragma once

#include <pthread.h>

#include <memory>

#include "runtime/EventClass.h"
#include "runtime/MutexClass.h"

class CTask;

enum ThreadType_t : int {
  kEventDriven = 0,
  kIntervalDriven = 1,
};

// The run state:
//
//                Start                     a pass begins
//   kThreadDown ───────► kThreadWaiting ─────────────────► kThreadBusy
//        ▲                      ▲                               │
//        │ the thread ends      └──────── the pass is good ─────┤
//        │                                                      ▼ it is not, or Stop
//        └───────────────────────────────────────────── kThreadShutting
//
// The states are entered in RunKernel, EnterWaiting, KernelPass and EndPass. Fault enters
// kThreadFault, where a part of the thread cannot be made, and at an Event that an
// interval-driven thread does not take.
enum RunState_t : int {
  kThreadBusy = 0,      // inside a pass
  kThreadWaiting = 1,   // between passes
  kThreadDown = 2,      // not running
  kThreadShutting = 3,  // a pass returned false, or Stop was called
  kThreadFault = 4,
};

enum ThreadError : unsigned {
  kNoMutex = 0x01,
  kNoEvent = 0x02,
  kNoThread = 0x04,  // cleared by the next Start
  kIllegalEvent = 0x10,
  kNoStack = 0x20,
};

class CThread {
 public:
  CThread();
  ~CThread();  // stops and joins; threads are destroyed through their own class
  CThread(const CThread&) = delete;
  CThread& operator=(const CThread&) = delete;

  // One object taken from the stack, and one pass with nothing pending. False ends
  // the thread. Both run on the thread itself.
  virtual bool OnTask(void* object);
  virtual bool OnTask();

  // True if the thread runs or was created; false leaves kThreadFault and kNoThread.
  bool Start();

  // The pass under way is the last one. Returns at once; Stop waits for the end.
  void EndAfterPass();

  // Returns when the thread is down. An interval-driven thread ends after its pass.
  void Stop();

  // Hands an object over and wakes the thread. A null object only wakes it. False
  // where 99 objects are pending, and on an interval-driven thread.
  bool Event(void* object);
  bool Event(CTask* task);

  bool Push(void* object);
  void Pop();  // the youngest object becomes Current; there must be one
  bool Empty();
  int GetEventsPending();
  int ThreadState();

  void SetIdle(long idle);
  void SetThreadType(ThreadType_t type, long idle);
  void SetPriority(long priority);

  bool IsRunning();

  // Waits until the thread runs; false after `timeout` units of 100 nanoseconds, a
  // timeout of 0 or less has no end.
  bool PingThread(long timeout);

  unsigned GetErrors();

 private:
  static constexpr int kCapacity = 100;

  static void* Kernel(void* self);
  void RunKernel();
  bool KernelPass();
  bool EndPass(bool good);
  void EnterWaiting();
  bool HasWakeUp();
  bool IsAlive();
  bool Lives() const;
  bool HasBegun();
  void WakeUp();
  void Fault(ThreadError error);
  ThreadType_t GetType();
  unsigned int GetIdle();

  CEventClass Wake;
  bool Running = false;    // set by the thread itself, cleared by Stop and at its end
  pthread_t Handle = 0;    // 0 when there is no thread to join
  pthread_t ThreadId = 0;  // as the running thread reads it; 0 until then
  std::unique_ptr<void*[]> Stack;
  int Capacity = kCapacity;
  int Count = 0;
  void* Current = nullptr;
  int RunState = kThreadDown;
  long Idle = 100;  // pause between passes, in units of 100 nanoseconds
  ThreadType_t Type = kEventDriven;
  std::size_t StackSize = 0;  // 0, the system's default: docs/design/contract.md
  unsigned Errors = 0;        // ThreadError bits
  CMutexClass Mutex;          // guards all of the above but Wake
  // Guarded by the event's mutex.
  unsigned WakeUps = 0;      // how often the thread was woken
  unsigned WakeUpsSeen = 0;  // how many of these a pass has followed
};
