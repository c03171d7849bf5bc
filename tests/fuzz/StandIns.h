// Replaces parts of the system for the code under test: no pause lasts, and where the
// process would end at a fixed limit, the target gets an exception.
#pragma once

#include <functional>

struct ProcessEnd {
  const char* limit;
};

// Runs the action wherever the code under test waits whole seconds; null for none.
void DuringPauses(std::function<void()> action);
