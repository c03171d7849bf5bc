#include "model/KeyPad.h"

#include <gtest/gtest.h>

namespace hub::model {
namespace {

using Events = std::vector<KeyEvent>;

constexpr KeyEvent kRight{KeyEventType::kRight};
constexpr KeyEvent kLeft{KeyEventType::kLeft};

KeyEvent Press(uint8_t code) { return {KeyEventType::kPress, code}; }
KeyEvent Release(uint8_t code) { return {KeyEventType::kRelease, code}; }

// The events of a whole sequence of bytes.
Events Through(const std::vector<uint8_t>& bytes) {
  Events events;
  for (size_t at = 1; at < bytes.size(); ++at)
    for (const KeyEvent& event : KeyEventsBetween(bytes[at - 1], bytes[at]))
      events.push_back(event);
  return events;
}

TEST(Keys, ArePressedAndLetGo) {
  EXPECT_EQ(Through({0x00, 0x05, 0x00}), (Events{Press(5), Release(5)}));
}

TEST(Keys, OneIsLetGoBeforeTheNextIsPressed) {
  EXPECT_EQ(Through({0x05, 0x3F}), (Events{Release(5), Press(63)}));
}

TEST(Keys, SameByteIsNoEvent) { EXPECT_EQ(Through({0x45, 0x45}), Events{}); }

TEST(Encoder, GoesRightThroughAllItsContacts) {
  EXPECT_EQ(Through({0x00, 0x40, 0xC0, 0x80, 0x00}), (Events{kRight, kRight, kRight, kRight}));
}

TEST(Encoder, GoesLeftTheOtherWay) {
  EXPECT_EQ(Through({0x00, 0x80, 0xC0, 0x40, 0x00}), (Events{kLeft, kLeft, kLeft, kLeft}));
}

TEST(Encoder, ABounceGoesThereAndBack) {
  EXPECT_EQ(Through({0x00, 0x40, 0x00, 0x40}), (Events{kRight, kLeft, kRight}));
}

TEST(Encoder, AMissedStepHasNoDirection) {
  EXPECT_EQ(Through({0x00, 0xC0}), Events{});
  EXPECT_EQ(Through({0x40, 0x80}), Events{});
}

TEST(Encoder, TurnsWhileAKeyIsHeld) {
  EXPECT_EQ(Through({0x05, 0x45, 0x40}), (Events{kRight, Release(5)}));
}

}  // namespace
}  // namespace hub::model
