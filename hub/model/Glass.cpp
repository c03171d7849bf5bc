#include "model/Glass.h"

#include <algorithm>

namespace hub::model {

namespace {

using protocol::LcdControl;

bool IsPrintable(char c) { return c >= ' ' && c <= '~'; }

}  // namespace

Glass::Glass(int rows, int columns)
    : rows_(static_cast<unsigned>(rows)),
      columns_(static_cast<unsigned>(columns)),
      cells_(static_cast<size_t>(rows_) * columns_, ' ') {}

void Glass::Write(unsigned column, unsigned row, std::string_view text) {
  at_.reset();
  if (column >= columns_ || row >= rows_) return;
  const size_t begin = static_cast<size_t>(row) * columns_ + column;
  const size_t count = std::min(text.size(), cells_.size() - begin);
  std::transform(text.begin(), text.begin() + static_cast<long>(count),
                 cells_.begin() + static_cast<long>(begin),
                 [](char c) { return IsPrintable(c) ? c : ' '; });
  const auto end = static_cast<unsigned>(begin + count);
  if (end < cells_.size()) at_ = Place{end / columns_, end % columns_};
}

void Glass::Control(LcdControl control) {
  switch (control) {
    case LcdControl::kClear:
      std::ranges::fill(cells_, ' ');
      is_known_ = true;
      at_ = Place{};
      return;
    case LcdControl::kLightOn:
    case LcdControl::kLightOff:
      light_ = control == LcdControl::kLightOn;
      return;
    case LcdControl::kCursorOn:
    case LcdControl::kCursorOff:
      cursor_ = control == LcdControl::kCursorOn;
      return;
    case LcdControl::kBlinkOn:
    case LcdControl::kBlinkOff:
      blink_ = control == LcdControl::kBlinkOn;
      return;
  }
}

std::vector<std::string> Glass::Rows() const {
  std::vector<std::string> rows;
  for (unsigned row = 0; row < rows_; ++row)
    rows.push_back(cells_.substr(static_cast<size_t>(row) * columns_, columns_));
  return rows;
}

unsigned Glass::Room(unsigned column, unsigned row) const {
  return column < columns_ && row < rows_ ? columns_ - column : 0;
}

}  // namespace hub::model
