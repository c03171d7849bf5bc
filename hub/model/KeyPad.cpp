#include "model/KeyPad.h"

#include <array>

namespace hub::model {

namespace {

constexpr uint8_t kKeyMask = 0x3F;
constexpr unsigned kContactShift = 6;

// By the two contacts as a number: their place in the order in which they go to the right.
constexpr std::array<unsigned, 4> kPlaces{0, 1, 3, 2};

unsigned PlaceOf(uint8_t byte) { return kPlaces[byte >> kContactShift]; }

}  // namespace

uint8_t WithoutKey(uint8_t byte) { return byte & static_cast<uint8_t>(~kKeyMask); }

std::vector<KeyEvent> KeyEventsBetween(uint8_t before, uint8_t after) {
  std::vector<KeyEvent> events;
  const uint8_t was = before & kKeyMask;
  const uint8_t is = after & kKeyMask;
  if (was != is && was != 0) events.push_back({KeyEventType::kRelease, was});
  if (was != is && is != 0) events.push_back({KeyEventType::kPress, is});
  const unsigned steps = (PlaceOf(after) - PlaceOf(before)) % 4;
  if (steps == 1) events.push_back({KeyEventType::kRight});
  if (steps == 3) events.push_back({KeyEventType::kLeft});
  return events;
}

}  // namespace hub::model
