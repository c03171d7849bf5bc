// The glass of a display as it must look after what was sent to it. Pure: text and controls in,
// rows out.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "protocol/IoCommand.h"

namespace hub::model {

class Glass {
 public:
  Glass(int rows, int columns);

  // Runs on into the next row and stops at the end; a place that the glass does not have shows
  // nothing; what cannot be printed is a blank.
  void Write(unsigned column, unsigned row, std::string_view text);
  void Control(protocol::LcdControl control);

  std::vector<std::string> Rows() const;
  unsigned RowCount() const { return rows_; }
  unsigned ColumnCount() const { return columns_; }

  // Characters that a text has room for from this place to the end of its row; 0 off the glass.
  unsigned Room(unsigned column, unsigned row) const;

  // True since the glass was cleared: before that it can show what nobody here has written.
  bool IsKnown() const { return is_known_; }

  // Nothing until one was sent.
  std::optional<bool> Light() const { return light_; }
  std::optional<bool> Cursor() const { return cursor_; }
  std::optional<bool> Blink() const { return blink_; }

  // Where the next character would stand: behind the last one that was written. Nothing before
  // the first one, and behind the last place of the glass.
  struct Place {
    unsigned row = 0;
    unsigned column = 0;
    bool operator==(const Place&) const = default;
  };
  std::optional<Place> At() const { return at_; }

  bool operator==(const Glass&) const = default;

 private:
  unsigned rows_;
  unsigned columns_;
  std::string cells_;  // row by row
  std::optional<Place> at_;
  bool is_known_ = false;
  std::optional<bool> light_;
  std::optional<bool> cursor_;
  std::optional<bool> blink_;
};

}  // namespace hub::model
