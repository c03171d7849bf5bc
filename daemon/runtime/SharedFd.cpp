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
  // A child of another thread holds the number until it begins its program; a port must be
  // free before that.
  shutdown(fd, SHUT_RDWR);
  close(fd);  // without the mutex: a device may take its time over it
}

bool SHARED_FD::IsWithdrawn() {
  const CMutexGuard guard(Mutex);
  return Withdrawn;
}

void SHARED_FD::Withdraw() {
  const CMutexGuard guard(Mutex);
  if (Fd < 0 || Withdrawn) return;
  Withdrawn = true;
  shutdown(Fd, SHUT_RDWR);  // a blocked call holds the socket open; this ends the call
  const int nothing = open("/dev/null", O_RDWR | O_CLOEXEC);
  if (nothing < 0) return;  // no descriptor left: shut down is all it can be
  dup3(nothing, Fd, O_CLOEXEC);
  close(nothing);
}

int SHARED_FD::Release() {
  const CMutexGuard guard(Mutex);
  Withdrawn = false;
  return std::exchange(Fd, -1);
}
