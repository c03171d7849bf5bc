// A virtual bus that notes its orders and answers what the test has written down. Its definition
// of hub::virtualbus::Control takes the place of the real one in this program.
#pragma once

#include <map>
#include <string>
#include <vector>

#include "virtualbus/Control.h"

struct FakeVirtualBus {
  FakeVirtualBus() { now = this; }
  ~FakeVirtualBus() { now = nullptr; }
  FakeVirtualBus(const FakeVirtualBus&) = delete;
  FakeVirtualBus& operator=(const FakeVirtualBus&) = delete;

  std::vector<std::string> asked;
  std::map<std::string, hub::virtualbus::Answer> answers{
      {"status", {{"  device /dev/pts/3", "  cable plugged", "  frames 4"}, ""}}};  // else "ok"
  bool is_there = true;

  static FakeVirtualBus* now;
};
