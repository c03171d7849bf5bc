// Writes every frame and reply to a file as it happens, one line each, for people and for replay.
#pragma once

#include <cstdio>
#include <string>

#include "base/Loop.h"
#include "base/Problem.h"
#include "journal/Journal.h"

namespace virtualbus {

class Recorder {
 public:
  explicit Recorder(Loop& loop) : loop_(loop) {}
  ~Recorder();
  Recorder(const Recorder&) = delete;
  Recorder& operator=(const Recorder&) = delete;

  // The file must not be there yet: a recording is never written over.
  Problem Begin(const std::string& path, Journal& journal);

 private:
  void Write(const Entry& entry);

  Loop& loop_;
  std::FILE* file_ = nullptr;
  Loop::TimerId flush_ = 0;
};

}  // namespace virtualbus
