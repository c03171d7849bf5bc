// Bus, daemon, broker and hub, its cards polled.
#pragma once

#include <string>

#include "Bus.h"
#include "Process.h"

class Hub {
 public:
  // The store is a new one where none is named.
  explicit Hub(const BusSetup& setup, const std::string& store = "");

  Bus bus;
  Process process;
  Clock::duration start_time{};

 private:
  void Start();

  Process daemon_;
  Process broker_;
};
