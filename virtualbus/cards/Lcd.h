// A display of 4 lines of 20 characters. Text runs on into the next line and stops at the end of
// the display. Two options say what the card shows when it boots; they are stored when they are
// set.
#pragma once

#include <array>

#include "cards/Card.h"

namespace virtualbus {

class Lcd : public Card {
 public:
  static constexpr size_t kRows = 4;
  static constexpr size_t kColumns = 20;

  Lcd();
  void PowerUp() override;
  bool Write(std::span<const uint8_t> data) override;
  std::vector<std::string> Show() const override;

  std::string Row(size_t row) const;
  size_t CursorAt() const { return cursor_at_; }  // row * kColumns + column
  bool Light() const { return light_; }
  bool Cursor() const { return cursor_; }
  bool Blinking() const { return blinking_; }

 private:
  void Clear();
  bool Control(uint8_t code);
  bool Text(std::span<const uint8_t> data);
  void Put(std::string_view text);

  std::array<uint8_t, kRows * kColumns> cells_{};
  size_t cursor_at_ = 0;
  bool light_ = false;
  bool cursor_ = false;
  bool blinking_ = false;
  std::array<uint8_t, 1> self_test_{0xFF};
  std::array<uint8_t, 1> init_light_{0xFF};
};

}  // namespace virtualbus
