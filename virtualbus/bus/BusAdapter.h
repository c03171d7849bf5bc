// The bus adapter: sixteen places for cards, and the answer to every frame of the host.
// A card that is pulled keeps its place (discovery reports it as silent) and its stored settings.
#pragma once

#include <array>
#include <memory>

#include "base/Problem.h"
#include "base/Text.h"
#include "cards/CardKinds.h"

namespace virtualbus {

class BusAdapter {
 public:
  struct Slot {
    const CardKind* kind = nullptr;  // null: never plugged
    std::unique_ptr<Card> card;
    bool pulled = false;
  };

  // A new card of a kind, booted. The address must be free or its card pulled.
  Problem Insert(uint8_t address, const CardKind& kind);
  Problem Pull(uint8_t address);
  Problem PlugBack(uint8_t address);  // the card boots

  const Slot& At(size_t address) const { return slots_[address]; }
  Card* Present(size_t address) const;  // null when there is none or it is pulled
  Problem WhyAbsent(uint8_t address) const;

  Bytes Answer(const Bytes& request);

 private:
  Bytes AnswerWrite(const Bytes& request);
  Bytes AnswerPoll(const Bytes& request);
  Bytes AnswerDiscover(const Bytes& request);
  Bytes AnswerHardwareCheck(const Bytes& request);
  Bytes AnswerRequest(const Bytes& request);
  Card* Addressed(const Bytes& request) const;

  struct Command;
  static const std::array<Command, 5> kCommands;

  std::array<Slot, kAddressCount> slots_;
};

}  // namespace virtualbus
