// SHARED_FD, a descriptor that one thread uses and another may take away.
//
// When one thread closes a number under another, the number can be somebody else's
// file a moment later. So only the owner thread ever frees the number: whoever
// withdraws it closes what is behind it, which the other side sees at once, and
// leaves /dev/null there until the owner comes by and closes.
#pragma once

#include "runtime/MutexClass.h"

class SHARED_FD {
 public:
  SHARED_FD() = default;
  SHARED_FD(const SHARED_FD&) = delete;
  SHARED_FD& operator=(const SHARED_FD&) = delete;

  // Owner thread only.
  void Adopt(int fd);                // takes over an open descriptor, or -1
  void Close();                      // frees the number; nothing happens where there is none
  int Number() const { return Fd; }  // -1 when closed
  bool IsOpen() const { return Fd >= 0; }
  bool IsWithdrawn();  // somebody took away what Number stood for

  // Any other thread. Wakes an owner that is blocked in accept or write.
  void Withdraw();

 private:
  int Release();  // from here on nobody else knows the number

  CMutexClass Mutex;  // guards the two below against Withdraw
  int Fd = -1;        // written by the owner only
  bool Withdrawn = false;
};
