// The card kinds: the word a person types, the code that discovery reports, how to make one.
#pragma once

#include <array>
#include <memory>
#include <string>
#include <string_view>

#include "cards/Card.h"

namespace virtualbus {

enum class KindId {
  kServo,
  kDigitalInput,
  kMotor,
  kDigitalOutput,
  kKeys,
  kIr,
  kLcd,
  kAnalogueInput
};

struct CardKind {
  KindId id;
  std::string_view word;
  uint8_t code;             // in a discovery reply
  uint8_t default_address;  // when no card is named at the start
  std::unique_ptr<Card> (*make)();
};

extern const std::array<CardKind, 8> kCardKinds;

const CardKind* FindKind(std::string_view word);  // null when there is none
std::string KindWords();                          // "servo, digital-input, ..."

}  // namespace virtualbus
