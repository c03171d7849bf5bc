// A program that the bench runs: started, held while another is measured, ended.
#pragma once

#include <sys/types.h>

#include <string>
#include <vector>

#include "Clock.h"

// What a process has used since it began.
struct Usage {
  double seconds = 0;  // processor time of all its threads
  long wakeups = 0;    // times one of its threads had slept and ran again
};

class Process {
 public:
  Process() = default;
  // Standard output goes to the descriptor, or nowhere.
  explicit Process(std::vector<std::string> words, int output = -1);
  // A process that somebody else started and that has become our child.
  explicit Process(pid_t pid) : pid_(pid) {}
  ~Process() { End(); }
  Process(Process&& other) noexcept;
  Process& operator=(Process&& other) noexcept;

  void Hold();     // it has stopped
  void Release();  // it runs again
  void End();
  void AwaitExit();

  Usage Used() const;
  int Threads() const;
  long ResidentKilobytes() const;

 private:
  pid_t pid_ = 0;
};
