#include "cards/Keys.h"

namespace virtualbus {

namespace {

constexpr std::array<uint8_t, 4> kContacts{0b00, 0b01, 0b11, 0b10};  // in turning order
constexpr int kContactShift = 6;

}  // namespace

Keys::Keys() { AddField(Group::kStart, "State", state_); }

void Keys::PowerUp() { waiting_steps_ = 0; }

Bytes Keys::Poll() {
  if (waiting_steps_ != 0) Step();
  return {state_.begin(), state_.end()};
}

std::span<uint8_t> Keys::Inputs() { return state_; }

bool Keys::Press(uint8_t key) {
  if (key == 0 || key > kLastKey) return false;
  state_[0] = static_cast<uint8_t>((state_[0] & ~kLastKey) | key);
  return true;
}

bool Keys::Release(std::optional<uint8_t> key) {
  if (key && *key != Key()) return false;
  state_[0] = static_cast<uint8_t>(state_[0] & ~kLastKey);
  return true;
}

bool Keys::Turn(int steps) {
  waiting_steps_ += steps;
  return true;
}

void Keys::Step() {
  const int direction = waiting_steps_ > 0 ? 1 : -1;
  waiting_steps_ -= direction;
  position_ += direction;
  size_t place = 0;
  while (kContacts[place] != state_[0] >> kContactShift) ++place;
  place = (place + (direction > 0 ? 1 : kContacts.size() - 1)) % kContacts.size();
  state_[0] = static_cast<uint8_t>(Key() | kContacts[place] << kContactShift);
}

}  // namespace virtualbus
