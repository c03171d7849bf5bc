#include "cards/Lcd.h"

#include <algorithm>

namespace virtualbus {

namespace {

constexpr uint8_t kSelfTest = 0x01;
constexpr uint8_t kInitLight = 0x02;

// First byte of a write; the ones below kTextCode stand alone.
enum Code : uint8_t {
  kClear,
  kLightOn,
  kLightOff,
  kCursorOn,
  kCursorOff,
  kBlinkOn,
  kBlinkOff,
  kTextCode = 9,  // column, row, the characters, 0
};

constexpr size_t kTextHeader = 3;

}  // namespace

Lcd::Lcd() {
  for (size_t row = 0; row < kRows; ++row) {
    const auto row_cells = std::span(cells_).subspan(row * kColumns, kColumns);
    AddField(Group::kStart, "Row" + std::to_string(row), row_cells, Form::kText);
  }
  AddField(Group::kStored, "SelfTest", self_test_);
  AddField(Group::kStored, "InitLight", init_light_);

  AddWritable(kSelfTest, self_test_);
  AddWritable(kInitLight, init_light_);
  AddReadable(kSelfTest, self_test_);
  AddReadable(kInitLight, init_light_);
}

void Lcd::PowerUp() {
  Clear();
  cursor_ = false;
  blinking_ = false;
  light_ = init_light_[0] != 0;
  if (self_test_[0] != 0) Put("SELF TEST OK");
}

bool Lcd::Write(std::span<const uint8_t> data) {
  if (data.size() == 1) return Control(data[0]);
  return data.size() > kTextHeader && data[0] == kTextCode && data.back() == 0 && Text(data);
}

bool Lcd::Control(uint8_t code) {
  switch (code) {
    case kClear:
      Clear();
      return true;
    case kLightOn:
    case kLightOff:
      light_ = code == kLightOn;
      return true;
    case kCursorOn:
    case kCursorOff:
      cursor_ = code == kCursorOn;
      return true;
    case kBlinkOn:
    case kBlinkOff:
      blinking_ = code == kBlinkOn;
      return true;
    default:
      return false;
  }
}

bool Lcd::Text(std::span<const uint8_t> data) {
  const size_t column = data[1];
  const size_t row = data[2];
  if (column >= kColumns || row >= kRows)
    return true;  // outside the display: accepted, and shows nothing
  cursor_at_ = row * kColumns + column;
  const auto text = data.subspan(kTextHeader, data.size() - kTextHeader - 1);
  Put({reinterpret_cast<const char*>(text.data()), text.size()});
  return true;
}

void Lcd::Put(std::string_view text) {
  for (const char c : text) {
    if (cursor_at_ == cells_.size()) return;
    cells_[cursor_at_++] = c >= ' ' && c <= '~' ? static_cast<uint8_t>(c) : ' ';
  }
}

void Lcd::Clear() {
  cells_.fill(' ');
  cursor_at_ = 0;
}

std::string Lcd::Row(size_t row) const {
  const auto* const first = cells_.begin() + static_cast<long>(row * kColumns);
  return {first, first + kColumns};
}

std::vector<std::string> Lcd::Show() const {
  const auto on_off = [](bool on) { return on ? "on" : "off"; };
  std::vector<std::string> lines = Card::Show();
  lines.push_back(std::string("light ") + on_off(light_));
  lines.push_back(std::string("cursor ") + on_off(cursor_));
  lines.push_back(std::string("blinking ") + on_off(blinking_));
  return lines;
}

}  // namespace virtualbus
