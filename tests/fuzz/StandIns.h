// What the code under test meets here instead of the system: no pause lasts, and an
// end of the process at a fixed limit is an exception that the target can expect.
#pragma once

#include <functional>

struct ProcessEnd {
  const char* limit;
};

// Runs wherever the code under test waits whole seconds; null for nothing.
void DuringPauses(std::function<void()> action);
