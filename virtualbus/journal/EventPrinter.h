// Prints the events as lines of text, where there is no terminal to draw the panel on.
// A reader that is too slow loses lines; it never delays the bus.
#pragma once

#include <cstddef>
#include <deque>
#include <string>

#include "base/Loop.h"
#include "journal/Journal.h"

namespace virtualbus {

class EventPrinter {
 public:
  EventPrinter(Loop& loop, int fd) : loop_(loop), fd_(fd) {}

  void Print(const Entry& entry);

 private:
  void WriteWaiting();
  void WriteLine(const std::string& line);

  Loop& loop_;
  int fd_;
  std::deque<std::string> waiting_;
  size_t dropped_ = 0;
  Loop::TimerId retry_ = 0;
};

}  // namespace virtualbus
