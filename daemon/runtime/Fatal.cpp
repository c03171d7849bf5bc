#include "runtime/Fatal.h"

#include <cstdio>
#include <cstdlib>

void EndAtLimit(const char* limit) {
  std::fprintf(stderr, "qelm: %s\n", limit);
  std::abort();
}
