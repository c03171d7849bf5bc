// Another hub on the broker, as it tells of itself: what was last heard, and since when. Plain
// data.
#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "model/Change.h"
#include "model/Kinds.h"
#include "model/Value.h"
#include "protocol/ConsoleReplies.h"

namespace hub::boards {

// What people there have settled of a channel.
struct Settled {
  std::string name;  // empty: none
  std::string unit;
  std::optional<model::Range> range;  // nothing: the byte, 0 to 255
};

struct Channel {
  model::Value value;                // a line, a number, or nothing until it is known
  std::optional<model::Time> since;  // when it was heard
  Settled settled;
};

struct Glass {
  static constexpr size_t kMostRows = 8;
  static constexpr size_t kMostColumns = 80;

  std::vector<std::string> rows;
  std::optional<bool> light;
  std::optional<bool> cursor;
  std::optional<bool> blink;
  bool operator==(const Glass&) const = default;
};

struct Card {
  static constexpr size_t kMostChannels = 16;

  const model::KindRow* kind = nullptr;  // null: the board has not said that there is one
  std::string name;
  bool is_present = false;        // by its bus; else it was silent
  std::optional<bool> answers;    // by its own status
  std::vector<Channel> channels;  // as many as the kind has; while there is none, those heard of
  std::optional<Glass> glass;
};

// The part of it that its topic `bus` tells.
struct Identity {
  std::string id;  // 8 hexadecimal digits; empty: not heard yet
  std::string name;
  std::string version;
  std::string daemon_state = "absent";  // "waiting", "up"
  std::string daemon_version;
  std::string adapter_state = "unknown";  // "down", "up"
  std::string adapter_device;
  std::string adapter_version;
  bool is_virtual = false;
};

struct Board {
  std::string name;      // in topics
  bool is_gone = false;  // nothing is known of it any more: its place is free
  Identity identity;
  uint32_t place = 0;               // among all boards
  std::optional<bool> says_online;  // in this connection to the broker
  bool is_told = false;             // that it is online, in the journal
  model::Time since;                // online, or stale, for so long
  std::array<Card, protocol::kCardCount> cards;
  uint64_t ignored = 0;     // messages that say nothing
  std::string ignored_why;  // of the last of them

  // The broker is there, and the board has said that it is.
  bool IsOnline() const { return says_online == true; }
};

}  // namespace hub::boards
