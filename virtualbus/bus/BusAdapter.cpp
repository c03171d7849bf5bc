#include "bus/BusAdapter.h"

#include <algorithm>

#include "base/Frames.h"

namespace virtualbus {

namespace {

constexpr std::string_view kIdentityText = "Xv1.2 virtual bus";
constexpr size_t kPollLength = 3;
constexpr size_t kWriteHeader = 3;
constexpr size_t kRequestLength = 4;  // one more with a value

Bytes Refused() { return {kRefused}; }

// The host polls a card once more in the same frame for each time that it discovered the card anew.
bool IsRepeatedPoll(const Bytes& request) {
  if (request.size() < kPollLength || request.size() % kPollLength != 0) return false;
  return std::equal(request.begin() + kPollLength, request.end(), request.begin());
}

}  // namespace

struct BusAdapter::Command {
  uint8_t first;
  Bytes (BusAdapter::*answer)(const Bytes& request);
};

constexpr std::array<BusAdapter::Command, 5> BusAdapter::kCommands{{
    {kWrite, &BusAdapter::AnswerWrite},
    {kPoll, &BusAdapter::AnswerPoll},
    {kDiscover, &BusAdapter::AnswerDiscover},
    {kHardwareCheck, &BusAdapter::AnswerHardwareCheck},
    {kRequest, &BusAdapter::AnswerRequest},
}};

Problem BusAdapter::Insert(uint8_t address, const CardKind& kind) {
  Slot& slot = slots_[address];
  if (slot.kind != nullptr && !slot.pulled)
    return Problem("address " + HexDigit(address) + " is taken");
  slot = {&kind, kind.make(), false};
  slot.card->PowerUp();
  return {};
}

Problem BusAdapter::Pull(uint8_t address) {
  if (Present(address) == nullptr) return WhyAbsent(address);
  slots_[address].pulled = true;
  return {};
}

Problem BusAdapter::PlugBack(uint8_t address) {
  Slot& slot = slots_[address];
  if (slot.kind == nullptr) return WhyAbsent(address);
  if (!slot.pulled) return Problem("card " + HexDigit(address) + " is plugged");
  slot.pulled = false;
  slot.card->PowerUp();
  return {};
}

Card* BusAdapter::Present(size_t address) const {
  const Slot& slot = slots_[address];
  return slot.pulled ? nullptr : slot.card.get();
}

Problem BusAdapter::WhyAbsent(uint8_t address) const {
  if (slots_[address].kind == nullptr) return Problem("no card at " + HexDigit(address));
  return Problem("card " + HexDigit(address) + " is pulled");
}

Bytes BusAdapter::Answer(const Bytes& request) {
  for (const Command& command : kCommands) {
    if (!request.empty() && request[0] == command.first) return (this->*command.answer)(request);
  }
  return Refused();
}

Card* BusAdapter::Addressed(const Bytes& request) const {
  return request.size() > 1 && request[1] < kAddressCount ? Present(request[1]) : nullptr;
}

Bytes BusAdapter::AnswerWrite(const Bytes& request) {
  Card* const card = Addressed(request);
  if (card == nullptr || request.size() < kWriteHeader) return Refused();
  const auto data = std::span(request).subspan(kWriteHeader);
  if (data.size() != request[2] || !card->Write(data)) return Refused();
  return {kTaken};
}

Bytes BusAdapter::AnswerPoll(const Bytes& request) {
  Card* const card = Addressed(request);
  if (card == nullptr || !IsRepeatedPoll(request)) return Refused();
  if (request[2] == 0 || request[2] != card->Inputs().size()) return Refused();
  Bytes reply{kPolled, request[1]};
  const Bytes blocks = card->Poll();
  reply.insert(reply.end(), blocks.begin(), blocks.end());
  return reply;
}

Bytes BusAdapter::AnswerDiscover(const Bytes& request) {
  if (request.size() != 1) return Refused();
  Bytes reply{kDiscovered};
  for (const Slot& slot : slots_) {
    const uint8_t code = slot.kind != nullptr ? slot.kind->code : kNoCard;
    reply.push_back(slot.pulled ? kSilentCard : code);
  }
  return reply;
}

Bytes BusAdapter::AnswerHardwareCheck(const Bytes& request) {
  if (request != Bytes{kHardwareCheck, 0x6F, 0x9A}) return Refused();
  return {kIdentityText.begin(), kIdentityText.end()};
}

Bytes BusAdapter::AnswerRequest(const Bytes& request) {
  Card* const card = Addressed(request);
  const bool has_value = request.size() == kRequestLength + 1;
  if (card == nullptr || (request.size() != kRequestLength && !has_value)) return Refused();

  const uint8_t number = request[3];
  std::optional<uint8_t> value = has_value ? std::optional(request[4]) : std::nullopt;
  if (request[2] == kReadRegister) {
    value = card->ReadRegister(number);
    if (!value) return Refused();
  } else if (request[2] != kWriteRegister || !card->WriteRegister(number, value)) {
    return Refused();
  }
  return {kAnswered, request[1], number, value.value_or(0)};
}

}  // namespace virtualbus
