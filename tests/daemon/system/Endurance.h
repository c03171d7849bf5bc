// Sessions opened, used and reset again and again, with a look at what the
// daemon holds before and after.
#pragma once

#include "DaemonTest.h"

class Endurance : public DaemonTest {
 protected:
  // Polling runs meanwhile; descriptors and threads are as before, memory nearly so.
  void UseAndResetSessions(int count);

 private:
  // Three listening ports, the adapter and the standard ones; passing pipes do not count.
  bool HoldsSevenDescriptors();
  void UseAndReset(Port port, const char* name, int session);
};
