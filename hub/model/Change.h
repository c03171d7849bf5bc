// What has changed on the bus since the last time, and the events that nobody may miss.
#pragma once

#include <chrono>
#include <cstdint>
#include <deque>
#include <vector>

#include "model/KeyPad.h"

namespace hub::model {

using Time = std::chrono::system_clock::time_point;

struct ChannelId {
  unsigned address = 0;  // 0..15
  unsigned number = 0;
  auto operator<=>(const ChannelId&) const = default;
};

// Something of another board: its row, one of its cards, or a channel of that.
struct BoardPlace {
  uint32_t board = 0;   // its place among all of them
  int8_t address = -1;  // -1: the row
  int8_t number = -1;   // -1: the card
  // NOLINTNEXTLINE(modernize-use-nullptr): the 0 that an ordering is compared with
  auto operator<=>(const BoardPlace&) const = default;
};

struct Event {
  uint64_t sequence = 0;
  Time time;
  unsigned address = 0;
  KeyEvent key;
};

// Levels are named, not copied: whoever tells them reads the value that is there then. Events are
// copied, since each of them counts.
struct Change {
  uint64_t after = 0;     // the sequence number before it
  uint64_t sequence = 0;  // and with it
  bool bus = false;
  bool page = false;                     // what the page keeps for everybody
  std::vector<unsigned> cards = {};      // by address, each once
  std::vector<ChannelId> channels = {};  // each once
  std::vector<Event> events = {};        // oldest first
  std::vector<BoardPlace> boards = {};   // each once
};

// The last events, for whoever comes back after a while.
class EventRing {
 public:
  static constexpr size_t kMost = 1000;
  static constexpr size_t kMostCounted = 10'000;  // events that are gone, and still counted

  void Add(const Event& event);

  // Those behind that sequence number, oldest first, and how many of them are gone (of the last
  // kMostCounted).
  struct Since {
    std::vector<Event> events;
    uint64_t lost = 0;
  };
  Since After(uint64_t sequence) const;

 private:
  std::deque<Event> events_;
  std::deque<uint64_t> gone_;  // their sequence numbers, oldest first
};

}  // namespace hub::model
