// A command to another board that is on its way, until the board's topics say what has become of
// it. Owned by whoever waits for it; it is entered at Boards meanwhile. One thread.
#pragma once

#include <functional>
#include <optional>
#include <string>

#include "boards/Board.h"
#include "boards/Said.h"

namespace hub::boards {

struct Order {
  enum class Outcome { kUnderWay, kShown, kRefused, kLost };

  std::string board;
  std::string topic;  // the whole of it: errors name it
  // Whether the board shows what was asked for; empty: its topics cannot.
  std::function<bool(const Board& board)> is_shown;
  std::function<void()> ended;  // called once

  Outcome outcome = Outcome::kUnderWay;
  Complaint complaint = {};  // where it is refused
};

}  // namespace hub::boards
