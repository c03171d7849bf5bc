// What a fuzz target reports.
#pragma once

#include <cstdio>
#include <cstdlib>

// Ends the run with the input kept, as at a crash.
inline void Require(bool holds, const char* what) {
  if (holds) return;
  std::fprintf(stderr, "finding: %s\n", what);
  std::abort();
}
