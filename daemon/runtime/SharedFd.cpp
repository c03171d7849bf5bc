#include "runtime/SharedFd.h"

#include <fcntl.h>
#include <sys/socket.h>
#include <unistd.h>

#include <utility>

void SHARED_FD::Adopt(int fd) {
  const CMutexGuard guard(Mutex);
  Fd = fd;
  Withdrawn = false;
}

void SHARED_FD::Close() {
  const int fd = Release();
  if (fd < 0) return;
  // A child that another thread has just forked holds a copy until its exec. The shutdown
  // reaches the copy too, so that the port is free at once.
  shutdown(fd, SHUT_RDWR);
  close(fd);  // without the mutex: closing a device may take long
}

bool SHARED_FD::IsWithdrawn() {
  const CMutexGuard guard(Mutex);
  return Withdrawn;
}

void SHARED_FD::Withdraw() {
  const CMutexGuard guard(Mutex);
  if (Fd < 0 || Withdrawn) return;
  Withdrawn = true;
  shutdown(Fd, SHUT_RDWR);  // ends a blocked call, which would keep the socket open
  const int nothing = open("/dev/null", O_RDWR | O_CLOEXEC);
  if (nothing < 0) return;  // no descriptor left: the shutdown has to do
  dup3(nothing, Fd, O_CLOEXEC);
  close(nothing);
}

int SHARED_FD::Release() {
  const CMutexGuard guard(Mutex);
  Withdrawn = false;
  return std::exchange(Fd, -1);
}
