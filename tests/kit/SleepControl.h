// What becomes of the `sleep` that the code under test runs from PATH: the tests'
// own program stands ahead of the system's and shortens every pause five hundred times.
#pragma once

#include <string>
#include <vector>

#include "kit/TempDir.h"

// Writes down the argument of every sleep while it lives.
class SleepRecord {
 public:
  SleepRecord();
  ~SleepRecord();
  SleepRecord(const SleepRecord&) = delete;
  SleepRecord& operator=(const SleepRecord&) = delete;

  std::vector<std::string> Seconds() const;

 private:
  TempDir Dir;
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
  TempDir Dir;
};
