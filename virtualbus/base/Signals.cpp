#include "base/Signals.h"

#include <sys/signalfd.h>
#include <unistd.h>

#include <csignal>

namespace virtualbus {

Signals::Signals(Loop& loop) : loop_(loop) {
  std::signal(SIGPIPE, SIG_IGN);  // the bus goes on when a reader of its output ends
  sigset_t set;
  sigemptyset(&set);
  for (const int signal : {SIGINT, SIGTERM, SIGHUP, SIGWINCH}) sigaddset(&set, signal);
  sigprocmask(SIG_BLOCK, &set, nullptr);
  fd_ = signalfd(-1, &set, SFD_NONBLOCK | SFD_CLOEXEC);
  loop_.Watch(fd_, [this] { OnSignal(); });
}

Signals::~Signals() { close(fd_); }

void Signals::OnSignal() {
  signalfd_siginfo info{};
  if (read(fd_, &info, sizeof info) != sizeof info) return;
  if (info.ssi_signo != SIGWINCH) {
    loop_.Stop();
  } else if (on_resize_) {
    on_resize_();
  }
}

}  // namespace virtualbus
