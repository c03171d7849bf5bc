// A year of ten channels, for the long runs and the bench: what a store makes of it takes minutes.
#pragma once

#include <functional>
#include <string>

#include "hub/FakeClock.h"
#include "store/Store.h"

namespace hub::store {

// They change together, and the clock passes with them.
class TenChannels {
 public:
  explicit TenChannels(FakeClock& clock) : clock_(clock) {}

  // A change each of so many seconds. The first of a minute finds that it is time to write the
  // minute before, and waits as it is told to.
  void AddMinute(Store& store, int every, const std::function<void()>& wait);

 private:
  FakeClock& clock_;
  unsigned level_ = 0;
};

// A change each of 30 seconds, in the last two weeks each of 5. A folder in memory is meant: a
// disk takes hours to write so often.
void AddYear(const StoreOptions& options, FakeClock& clock);

}  // namespace hub::store
