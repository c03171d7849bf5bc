// What a fault in something that must go on for as long as the hub does comes to: the end of the
// hub, which its unit starts again. Swallowed, a door would stay shut and nobody would know why.
#pragma once

#include <cstdio>
#include <cstdlib>
#include <exception>

namespace hub::model {

// For co_spawn, in the place of `detached`. Thrown out of io_context::run().
struct EndOnFault {
  void operator()(const std::exception_ptr& fault) const {
    if (fault) std::rethrow_exception(fault);
  }
};

// The same on a thread of its own, which nobody waits for.
[[noreturn]] inline void EndAtOnce(const std::exception& fault) {
  std::fprintf(stderr, "qelm-hub: %s\n", fault.what());
  std::quick_exit(EXIT_FAILURE);
}

}  // namespace hub::model
