// SHARED_FD, a descriptor that one thread uses and another may take away.
//
// If one thread closed a number that another still uses, the system could give that
// number to a new file. So only the owner thread frees it. Withdraw closes the file or
// the connection behind the number at once and puts /dev/null there, until the owner
// calls Close.
#pragma once

#include "runtime/MutexClass.h"

class SHARED_FD {
 public:
  SHARED_FD() = default;
  SHARED_FD(const SHARED_FD&) = delete;
  SHARED_FD& operator=(const SHARED_FD&) = delete;

  // Owner thread only.
  void Adopt(int fd);                // takes over an open descriptor, or -1
  void Close();                      // frees the number, if there is one
  int Number() const { return Fd; }  // -1 when closed
  bool IsOpen() const { return Fd >= 0; }
  bool IsWithdrawn();  // another thread has called Withdraw since Adopt

  // Any other thread. Wakes an owner that is blocked in accept or write.
  void Withdraw();

 private:
  int Release();  // takes the number out, so that Withdraw no longer finds it

  CMutexClass Mutex;  // guards the two below against Withdraw
  int Fd = -1;        // written by the owner only
  bool Withdrawn = false;
};
