// Start-up of the daemon. The process always ends through exit(), which destroys nothing
// that the running threads still use.
#include <unistd.h>

#include <csignal>
#include <cstdio>
#include <cstdlib>

#include "core/qelm.h"
#include "runtime/Shared.h"
#include "runtime/Values.h"

namespace {

int* pSignalFlag = nullptr;  // the caught signal, kNoSignal until there is one

extern "C" void SIGhandler(int sig) { StoreShared(*pSignalFlag, sig); }

void Detach() {
  const pid_t child = fork();
  if (child < 0) exit(EXIT_FAILURE);
  if (child > 0) exit(EXIT_SUCCESS);
  setsid();
}

void WritePidFile() {
  FILE* file = std::fopen("/var/run/qelm/qelm.pid", "we");
  if (file == nullptr) {
    std::puts("Couldn't open pid file.");
    exit(EXIT_FAILURE);
  }
  std::fputs(ITOA(getpid()).c_str(), file);
  std::fclose(file);
}

void CatchSignals() {
  pSignalFlag = new int(kNoSignal);
  std::signal(SIGINT, SIGhandler);
  std::signal(SIGTERM, SIGhandler);
}

}  // namespace

int main() {
  Detach();
  WritePidFile();
  CatchSignals();
  QELM qelm(LOGGER(), pSignalFlag);
  if (!qelm.InitProgramData()) exit(EXIT_SUCCESS);
  qelm.InitInterfaces();
  qelm.MasterThread();
  exit(EXIT_SUCCESS);
}
