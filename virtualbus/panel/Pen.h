// Draws one card's box at its place, and remembers which spots of it can be clicked.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "base/Problem.h"
#include "panel/Terminal.h"

namespace virtualbus {

struct Spot {
  int row;
  int column;
  int width;
  std::function<Problem(int offset)> on_click;  // columns from the spot's left edge
  std::function<Problem(int steps)> on_wheel;   // may be empty
};

class Pen {
 public:
  Pen(Terminal& terminal, std::vector<Spot>& spots, int row, int column)
      : terminal_(terminal), spots_(spots), row_(row), column_(column) {}

  void Put(int row, int column, const std::string& text, Look look = Look::kPlain) {
    terminal_.Put(row_ + row, column_ + column, text, look);
  }
  void AddSpot(Spot spot) {
    spot.row += row_;
    spot.column += column_;
    spots_.push_back(std::move(spot));
  }
  const Glyphs& Shapes() const { return terminal_.Shapes(); }

 private:
  Terminal& terminal_;
  std::vector<Spot>& spots_;
  int row_;
  int column_;
};

}  // namespace virtualbus
