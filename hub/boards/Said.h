// What a topic of another board is about, and what its payload says. Nothing here believes what it
// reads: what is too long, of another form or out of bounds says nothing. Pure functions.
#pragma once

#include <array>
#include <optional>
#include <string>
#include <string_view>
#include <variant>

#include "boards/Board.h"

namespace hub::boards {

enum class What { kStatus, kBus, kRates, kError, kCardStatus, kGlass, kEvent, kValue };

struct Place {
  std::string_view board;
  What what;
  unsigned address = 0;
  unsigned number = 0;
  size_t most = 0;  // bytes of a payload
};

// qelm/NAME/status, qelm/NAME/5/0 and the like; why not, otherwise.
std::variant<Place, std::string> ReadTopic(std::string_view topic);

// The name in it, where it is one: 1 to 32 letters, digits, "-", "_".
std::optional<std::string_view> BoardIn(std::string_view topic);

bool IsId(std::string_view text);  // of a hub: 8 hexadecimal digits in lower case

std::optional<bool> ReadStatus(std::string_view payload);  // "online", "offline"

// "ON", "OFF", a number, "None".
std::optional<model::Value> ReadValue(std::string_view payload);
// A channel of that kind can have it.
bool Fits(const model::Value& value, const model::KindRow& kind);

std::optional<Glass> ReadGlass(std::string_view payload);

struct CardEntry {
  const model::KindRow* kind = nullptr;  // null: no card there
  std::string name;
  bool is_present = false;
  std::array<Settled, Card::kMostChannels> settled;
};
struct BusSaid {
  Identity identity;
  std::array<CardEntry, protocol::kCardCount> cards;
};
std::optional<BusSaid> ReadBus(std::string_view payload);

// Of a command that failed.
struct Complaint {
  std::string topic;
  int status = 0;  // 400 to 599
  std::string detail;
  std::string where;  // empty: none
};
std::optional<Complaint> ReadComplaint(std::string_view payload);

}  // namespace hub::boards
