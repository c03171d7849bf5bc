// The byte of a key card as events: keys pressed and let go, steps of the encoder.
// Pure: byte after byte in, events out.
#pragma once

#include <cstdint>
#include <optional>
#include <vector>

namespace hub::model {

enum class KeyEventType { kPress, kRelease, kLeft, kRight };

struct KeyEvent {
  KeyEventType type;
  uint8_t code = 0;  // of a press or a release, 1..63
  bool operator==(const KeyEvent&) const = default;
};

uint8_t WithoutKey(uint8_t byte);  // the encoder where it is, no key pressed

// What has happened between two bytes that follow each other. Right goes through the contacts
// 00 01 11 10. Where both contacts have changed at once a step was missed, and nobody can say in
// which direction: no event.
std::vector<KeyEvent> KeyEventsBetween(uint8_t before, uint8_t after);

}  // namespace hub::model
