// A process that is called like another program, for as long as a test wants it.
#pragma once

#include <gtest/gtest.h>
#include <signal.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <functional>

#include "kit/Files.h"
#include "kit/Proc.h"
#include "kit/Wait.h"

class Impostor {
 public:
  Impostor(const std::string& name, const std::function<void()>& act) : pid_(fork()) {
    if (pid_ == 0) {
      prctl(PR_SET_PDEATHSIG, SIGKILL);
      prctl(PR_SET_NAME, name.c_str());
      act();
      pause();
      _exit(0);
    }
    EXPECT_TRUE(WaitUntil([&] { return ReadFile(ProcPath(pid_, "comm")) == name + "\n"; }));
  }
  ~Impostor() {
    kill(pid_, SIGKILL);
    waitpid(pid_, nullptr, 0);
  }
  Impostor(const Impostor&) = delete;
  Impostor& operator=(const Impostor&) = delete;

 private:
  pid_t pid_;
};
