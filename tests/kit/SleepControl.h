// What becomes of the `sleep` that the code under test runs from PATH: the tests' own
// program (sleep.cpp) stands ahead of the system's and shortens every pause. And how long the
// daemon waits for a virtual bus on a busy machine.
#pragma once

#include <map>
#include <string>
#include <vector>

#include "kit/TempDir.h"

// The PATH with that program ahead.
std::string WithShortSleep(const std::string& path);

// The environment of a daemon that waits for replies longer than its reads last (patience.cpp).
std::map<std::string, std::string> WithPatience();

// Writes down the argument of every sleep while it lives.
class SleepRecord {
 public:
  SleepRecord();
  ~SleepRecord();
  SleepRecord(const SleepRecord&) = delete;
  SleepRecord& operator=(const SleepRecord&) = delete;

  std::vector<std::string> Seconds() const;

 private:
  TempDir dir_;
};

// Makes every sleep last until the test ends it: what has to happen during a pause
// happens during the pause, however busy the machine is.
class SleepGate {
 public:
  SleepGate();
  ~SleepGate();
  SleepGate(const SleepGate&) = delete;
  SleepGate& operator=(const SleepGate&) = delete;

  // Ends the sleep under way, or the next one. False when none comes.
  bool Open();

 private:
  TempDir dir_;
};
