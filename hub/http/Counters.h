// What the doors of this folder have done, for the monitoring system. One thread.
#pragma once

#include <cstdint>
#include <map>

namespace hub::http {

struct Counters {
  std::map<int, uint64_t> requests;  // answered, by status
  uint64_t turned_away = 0;          // connections over the limit
  uint64_t calls = 0;                // over WebSockets
  uint64_t messages = 0;             // of changes, sent
  uint64_t merged = 0;               // messages that told of several changes at once
  uint64_t lost = 0;                 // events that a client was too slow for
  uint64_t cut = 0;                  // WebSockets that were too slow to take their answers
};

}  // namespace hub::http
