#include "cards/CardKinds.h"

#include <algorithm>

#include "cards/AnalogueInput.h"
#include "cards/DigitalInput.h"
#include "cards/DigitalOutput.h"
#include "cards/Ir.h"
#include "cards/Keys.h"
#include "cards/Lcd.h"
#include "cards/Motor.h"
#include "cards/Servo.h"

namespace virtualbus {

namespace {

template <typename Kind>
std::unique_ptr<Card> Make() {
  return std::make_unique<Kind>();
}

}  // namespace

constexpr std::array<CardKind, 8> kCardKinds{{
    {KindId::kServo, "servo", 0x05, 0x0, Make<Servo>},
    {KindId::kDigitalInput, "digital-input", 0x04, 0x3, Make<DigitalInput>},
    {KindId::kMotor, "motor", 0x06, 0x4, Make<Motor>},
    {KindId::kDigitalOutput, "digital-output", 0x03, 0x5, Make<DigitalOutput>},
    {KindId::kKeys, "keys", 0x08, 0x8, Make<Keys>},
    {KindId::kIr, "ir", 0x0A, 0x9, Make<Ir>},
    {KindId::kLcd, "lcd", 0x09, 0xE, Make<Lcd>},
    {KindId::kAnalogueInput, "analogue-input", 0x07, 0xF, Make<AnalogueInput>},
}};

const CardKind* FindKind(std::string_view word) {
  const auto found = std::ranges::find(kCardKinds, word, &CardKind::word);
  return found != kCardKinds.end() ? &*found : nullptr;
}

std::string KindWords() {
  std::string words;
  for (const CardKind& kind : kCardKinds) {
    if (!words.empty()) words += ", ";
    words += kind.word;
  }
  return words;
}

}  // namespace virtualbus
