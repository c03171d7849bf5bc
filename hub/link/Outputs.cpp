#include "link/Outputs.h"

#include <utility>
#include <variant>

namespace hub::link {

using model::Direction;
using model::Kind;
using protocol::WriteBlock;

namespace {

bool IsOutput(const model::Card* card) {
  return card != nullptr && card->Row().direction == Direction::kOutput;
}

}  // namespace

void Outputs::Remember(const std::vector<WriteBlock>& asked) {
  for (const WriteBlock& command : asked)
    remembered_[{command.address, command.block}] = command.value;
}

void Outputs::TakeCards(model::Time now) {
  for (unsigned address = 0; address < protocol::kCardCount; ++address)
    if (const model::Card* card = bus_.At(address)) keeper_.SetKind(address, card->kind);
  bool has_remembered = false;
  for (auto each = remembered_.begin(); each != remembered_.end();) {
    const auto& [place, value] = *each;
    const WriteBlock command{place.first, place.second, value};
    if (!IsOutput(bus_.At(command.address))) {
      ++each;
      continue;
    }
    keeper_.Remember(command);
    bus_.TakeOutput(command, now);
    has_remembered = true;
    each = remembered_.erase(each);
  }
  if (has_remembered) bus_.AssumeOutputs();
  for (const auto& [place, pending] : pending_) bus_.SetPending(place.first, place.second, true);
}

Receipt Outputs::Write(const WriteBlock& command) {
  if (!IsForOutput(command)) return sender_.Offer(command);
  if (is_held_ && sender_.IsOpen()) return WriteLater(command);
  Keep(command);
  if (!sender_.IsOpen()) return sender_.Answered(Outcome::kAbsent);
  if (discoveries_go_unseen_) keeper_.ForgetRecord();
  keeper_.SetKept(command.address, IsKept(command.address));
  OutputKeeper::Commands commands = keeper_.Complete(command);
  commands.pop_back();
  for (const WriteBlock& other : commands) Offer(other);
  return Offer(command);
}

bool Outputs::IsForOutput(const WriteBlock& command) const {
  const model::Card* card = bus_.At(command.address);
  const bool can_come = card == nullptr && is_held_;  // the daemon does not know its cards yet
  return IsOutput(card) || can_come;
}

// What the block is to be from now on. Until the daemon has acted on it, it can be taken back.
void Outputs::Keep(const WriteBlock& command) {
  before_.try_emplace({command.address, command.block}, KeptFor(command.address, command.block));
  if (bus_.At(command.address) == nullptr)
    remembered_[{command.address, command.block}] = command.value;
  keeper_.Remember(command);
  sinks_.asked(command);
}

// Of a card that did not come yet, too.
std::optional<uint8_t> Outputs::KeptFor(uint8_t address, uint8_t block) const {
  const auto remembered = remembered_.find({address, block});
  return remembered == remembered_.end() ? keeper_.Asked(address, block)
                                         : std::optional(remembered->second);
}

// Whatever becomes of this session.
void Outputs::KeepAccepted(const WriteBlock& command) {
  Keep(command);
  Insist(command.address, command.block);
}

void Outputs::Insist(unsigned address, unsigned block) {
  before_.erase({static_cast<uint8_t>(address), static_cast<uint8_t>(block)});
}

Receipt Outputs::WriteLater(const WriteBlock& command) {
  bus_.SetPending(command.address, command.block, true);
  Pending& pending = pending_[{command.address, command.block}];
  pending.value = command.value;
  if (!IsWithoutAdapter()) return pending.receipts.emplace_back(sender_.Unanswered());
  KeepAccepted(command);
  return sender_.Answered(Outcome::kAccepted);
}

Receipt Outputs::Offer(const WriteBlock& command) {
  keeper_.NoteAsked(command);
  return sender_.Offer(command);
}

void Outputs::OfferPending(const WriteBlock& command) {
  const Receipt receipt = Offer(command);
  auto pending = pending_.extract({command.address, command.block});
  if (!pending.empty()) sender_.PassOn(receipt, std::move(pending.mapped().receipts));
}

void Outputs::AcceptPending() {
  for (auto& [place, pending] : pending_) {
    if (pending.receipts.empty()) continue;
    KeepAccepted({place.first, place.second, pending.value});
    for (const Receipt& receipt : std::exchange(pending.receipts, {}))
      receipt->Give(Outcome::kAccepted);
  }
}

bool Outputs::IsWithoutAdapter() const {
  return bus_.AdapterNow().state == model::AdapterState::kDown;
}

void Outputs::Hold() {
  is_held_ = true;
  if (IsWithoutAdapter()) AcceptPending();
}

void Outputs::Release(Record record) {
  is_held_ = false;
  NoteRecord(record);
  for (const auto& [place, pending] : pending_) Keep({place.first, place.second, pending.value});
  if (record != Record::kOfAnEarlierHub)
    for (unsigned address = 0; address < protocol::kCardCount; ++address) Restore(address);
  // What the record has already, too: the command is the receipt.
  while (!pending_.empty()) {
    const auto& [place, pending] = *pending_.begin();
    OfferPending({place.first, place.second, pending.value});
  }
}

void Outputs::NoteRecord(Record record) {
  if (record != Record::kAtStart && record != Record::kForcedToStart) return keeper_.ForgetRecord();
  for (unsigned address = 0; address < protocol::kCardCount; ++address)
    keeper_.SetKept(address, IsKept(address));
  keeper_.NoteDiscovery(record == Record::kForcedToStart);
  for (unsigned address = 0; address < protocol::kCardCount; ++address) {
    if (IsKept(address)) continue;
    bus_.AssumeOutputs(address);
    TellAsked(address);  // it begins from there after a restart of the hub, too
  }
}

void Outputs::TellAsked(unsigned address) const {
  for (uint8_t block = 0; block < OutputKeeper::kMostBlocks; ++block)
    if (const auto asked = keeper_.Asked(address, block))
      sinks_.asked({static_cast<uint8_t>(address), block, *asked});
}

// Its frame carries the whole card, as the record has it.
void Outputs::TakeReceipt(const protocol::IoCommand& command, model::Time now) {
  bus_.TakeOutput(command, now);
  const auto* written = std::get_if<WriteBlock>(&command);
  if (written == nullptr) return;
  if (const auto before = before_.find({written->address, written->block});
      before != before_.end()) {
    before->second = written->value;
    if (keeper_.Asked(written->address, written->block) == written->value) before_.erase(before);
  }
  for (const WriteBlock& block : keeper_.TakeFrame(protocol::AddressOf(command)))
    bus_.TakeOutput(block, now);
}

void Outputs::SendAgain() {
  if (is_held_) return;
  keeper_.ForgetRecord();
  for (unsigned address = 0; address < protocol::kCardCount; ++address) {
    if (!IsOutput(bus_.At(address))) continue;
    keeper_.SetKept(address, IsKept(address));
    for (const WriteBlock& command : keeper_.Restore(address)) Offer(command);
  }
  sender_.Flush();
}

// What was written may have been done: only its echo is missing.
void Outputs::Lose(const Outbox::Abandoned& abandoned) {
  is_held_ = true;
  keeper_.ForgetRecord();
  auto before = std::exchange(before_, {});
  for (const Outbox::Entry& each : abandoned.written)
    if (const auto* block = std::get_if<WriteBlock>(&each.command))
      if (const auto found = before.find({block->address, block->block}); found != before.end())
        found->second = block->value;
  for (const Outbox::Entry& each : abandoned.never_written)
    if (const auto* block = std::get_if<WriteBlock>(&each.command))
      if (const auto found = before.extract({block->address, block->block}); !found.empty())
        PutBack(found.key(), found.mapped());
  for (const auto& [place, pending] : std::exchange(pending_, {})) {
    for (const Receipt& receipt : pending.receipts) receipt->Give(Outcome::kAbsent);
    bus_.SetPending(place.first, place.second, false);
  }
}

void Outputs::PutBack(Place place, std::optional<uint8_t> value) {
  const auto [address, block] = place;
  remembered_.erase(place);
  if (!value) {
    keeper_.Forget(address, block);
    return sinks_.forgotten(address, block);
  }
  if (bus_.At(address) == nullptr) remembered_[place] = *value;
  keeper_.Remember({address, block, *value});
  sinks_.asked({address, block, *value});
}

bool Outputs::IsKept(unsigned address) const {
  const model::Card* card = bus_.At(address);
  const bool by_kind = card != nullptr && card->kind != Kind::kMotor;
  return bus_.Names().Card(address).keep.value_or(by_kind);
}

// One command at least: the last one before may have been lost on the line.
void Outputs::Restore(unsigned address) {
  if (!IsOutput(bus_.At(address))) return;
  keeper_.SetKept(address, IsKept(address));
  Resend(address, keeper_.AfterReboot(address));
}

void Outputs::Resend(unsigned address, const OutputKeeper::Commands& commands) {
  if (commands.empty()) return;
  for (const WriteBlock& command : commands) OfferPending(command);
  restored_count_ += commands.size();
  sinks_.restored(address, commands.size());
}

// A card that is not kept shows its start values now, and stays so.
void Outputs::TakeReboot(unsigned address, model::Time now) {
  const model::Card* card = bus_.At(address);
  if (!IsOutput(card)) return;
  const model::KindRow& row = card->Row();
  for (uint8_t block = 0; block < row.blocks; ++block)
    bus_.TakeOutput(WriteBlock{static_cast<uint8_t>(address), block, row.start}, now);
  keeper_.SetKept(address, IsKept(address));
  keeper_.NoteReboot(address);
  if (!IsKept(address)) TellAsked(address);
  if (!is_held_) Restore(address);
}

uint8_t Outputs::Asked(unsigned address, unsigned block) const {
  const Place place{static_cast<uint8_t>(address), static_cast<uint8_t>(block)};
  if (const auto pending = pending_.find(place); pending != pending_.end())
    return pending->second.value;
  const model::Card* card = bus_.At(address);
  const uint8_t start = card == nullptr ? uint8_t{0} : card->Row().start;
  return keeper_.Asked(address, block).value_or(start);
}

}  // namespace hub::link
