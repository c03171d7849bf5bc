// What people read on a terminal or in a pipe: colours only where they help, columns that line up.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace ctl {

enum class Colour { kNone, kBold, kFaint, kGreen, kYellow, kRed };

// Colours go to a terminal, and not where NO_COLOR is set to something.
bool WantsColours();

class Paint {
 public:
  explicit Paint(bool coloured) : coloured_(coloured) {}

  std::string operator()(Colour colour, std::string_view text) const;

 private:
  bool coloured_;
};

struct Cell {
  std::string text;
  Colour colour = Colour::kNone;
};

// Columns as wide as their widest cell, two blanks between them, none at the end of a line. What
// comes from others is made printable here.
class Table {
 public:
  void Add(std::vector<Cell> row) { rows_.push_back(std::move(row)); }
  std::string Text(const Paint& paint) const;

 private:
  std::vector<std::vector<Cell>> rows_;
};

}  // namespace ctl
