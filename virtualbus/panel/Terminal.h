// The terminal that the panel draws on: set up by the constructor, put back by the destructor.
#pragma once

#include <array>
#include <string>

namespace virtualbus {

enum class Look { kPlain, kBold, kDim, kSelected, kGood, kBad, kDisplay };

// What the panel is drawn with, by what the terminal can show.
struct Glyphs {
  std::string lamp_on;
  std::string lamp_off;
  std::string bar_on;
  std::string bar_off;
  std::string middle;
  std::array<std::string, 8> plot;  // from low to high
};

class Terminal {
 public:
  Terminal();
  ~Terminal();
  Terminal(const Terminal&) = delete;
  Terminal& operator=(const Terminal&) = delete;

  int Rows() const;
  int Columns() const;
  const Glyphs& Shapes() const { return glyphs_; }

  bool IsReady() const;  // takes output without making us wait
  void Resize();
  void Clear();
  void ClearFrom(int row);  // that row and all below
  // Cut off at the right edge.
  void Put(int row, int column, const std::string& text, Look look);
  void Show();

 private:
  Glyphs glyphs_;
};

}  // namespace virtualbus
