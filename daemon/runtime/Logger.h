// LOGGER appends the daemon's events to the log file, a line each.
//
// QELM holds one; every interface thread holds a copy of its own, made when it is
// built. Any thread that shares a copy may log through it.
#pragma once

#include <string>

#include "runtime/MutexClass.h"

class LOGGER {
 public:
  LOGGER() = default;
  LOGGER(const LOGGER& other) : LogLevel(other.LogLevel), LogFile(other.LogFile) {}
  LOGGER& operator=(const LOGGER& other);

  // Appends "time [tag] text" where level reaches LogLevel. Reports nothing: without
  // a file that opens, the event is dropped. A line over 999 characters ends the
  // process.
  void LOG(const std::string& tag, const std::string& text, int level);

  // Set once at start, before the copies are made.
  int LogLevel = 0;     // the lowest level that is written; the daemon logs with level 1
  std::string LogFile;  // empty: no log

 private:
  CMutexClass Mutex;  // serialises the writers of this copy
};
