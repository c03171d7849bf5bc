#include "kit/SleepControl.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdlib>
#include <fstream>

#include "kit/Wait.h"

namespace {

constexpr const char* kRecordVariable = "QELM_TEST_SLEEP_RECORD";
constexpr const char* kGateVariable = "QELM_TEST_SLEEP_GATE";

}  // namespace

std::string WithShortSleep(const std::string& path) { return SHORT_SLEEP_FOLDER ":" + path; }

std::map<std::string, std::string> WithPatience() {
  return {{"LD_PRELOAD", SHORT_SLEEP_FOLDER "/libpatience.so"},
          {"ASAN_OPTIONS", "verify_asan_link_order=0"}};
}

SleepRecord::SleepRecord() { setenv(kRecordVariable, dir_.Path("record").c_str(), 1); }

SleepRecord::~SleepRecord() { unsetenv(kRecordVariable); }

std::vector<std::string> SleepRecord::Seconds() const {
  std::ifstream file(dir_.Path("record"));
  std::vector<std::string> seconds;
  for (std::string line; std::getline(file, line);) seconds.push_back(line);
  return seconds;
}

SleepGate::SleepGate() {
  mkfifo(dir_.Path("gate").c_str(), 0600);
  setenv(kGateVariable, dir_.Path("gate").c_str(), 1);
}

SleepGate::~SleepGate() { unsetenv(kGateVariable); }

// A fifo opens for writing only once somebody reads, here the sleep.
bool SleepGate::Open() {
  int gate = -1;
  const bool opened = WaitUntil([&] {
    gate = open(dir_.Path("gate").c_str(), O_WRONLY | O_NONBLOCK | O_CLOEXEC);
    return gate >= 0;
  });
  if (opened) close(gate);
  return opened;
}
