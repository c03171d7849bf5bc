#include "model/Text.h"

#include <cstdint>

namespace hub::model {

bool HasControls(std::string_view text) {
  uint8_t last = 0;
  for (const char c : text) {
    const auto byte = static_cast<uint8_t>(c);
    if (byte < 0x20 || byte == 0x7F || (last == 0xC2 && byte < 0xA0)) return true;
    last = byte;
  }
  return false;
}

}  // namespace hub::model
