#include "link/OutputKeeper.h"

#include <algorithm>
#include <bit>

namespace hub::link {

using protocol::WriteBlock;

namespace {

uint8_t BlockCount(model::Kind kind) {
  const model::KindRow& row = model::RowOf(kind);
  return row.direction == model::Direction::kOutput ? row.blocks : uint8_t{0};
}

int LinesOff(uint8_t value, uint8_t record) {
  return std::popcount(static_cast<unsigned>(value ^ record));
}

}  // namespace

void OutputKeeper::SetKind(unsigned address, model::Kind kind) {
  Card& card = cards_[address];
  if (card.kind == kind) return;
  card.kind = kind;
  card.blocks = {};
}

void OutputKeeper::NoteAsked(const WriteBlock& command) {
  Card& card = cards_[command.address];
  if (command.block >= BlockCount(card.kind)) return;
  card.blocks[command.block] = {command.value, command.value};
}

void OutputKeeper::Remember(const WriteBlock& command) {
  Card& card = cards_[command.address];
  if (command.block < BlockCount(card.kind)) card.blocks[command.block].asked = command.value;
}

void OutputKeeper::NoteDiscovery(bool was_forced) {
  for (Card& card : cards_) {
    const uint8_t start = model::RowOf(card.kind).start;
    const bool is_certain = was_forced || card.kind != model::Kind::kMotor;
    for (size_t i = 0; i < BlockCount(card.kind); ++i) {
      Block& block = card.blocks[i];
      block.on_record = is_certain ? std::optional(start) : std::nullopt;
      if (card.kept || !is_certain) continue;
      if (block.at_start == AtStart::kCard) block.at_start = AtStart::kBothOrNone;
      if (!block.asked || block.asked == start) continue;
      block.asked = start;
      block.at_start = AtStart::kRecord;
    }
  }
}

void OutputKeeper::NoteReboot(unsigned address) {
  Card& card = cards_[address];
  if (card.kept) return;
  const uint8_t start = model::RowOf(card.kind).start;
  for (size_t i = 0; i < BlockCount(card.kind); ++i) {
    Block& block = card.blocks[i];
    block.asked = start;
    block.at_start = block.on_record == start ? AtStart::kBothOrNone : AtStart::kCard;
  }
}

OutputKeeper::Commands OutputKeeper::TakeFrame(unsigned address) {
  Card& card = cards_[address];
  Commands blocks;
  for (uint8_t i = 0; i < BlockCount(card.kind); ++i) {
    Block& block = card.blocks[i];
    if (block.at_start != AtStart::kRecord) continue;
    block.at_start = AtStart::kBothOrNone;
    blocks.push_back({static_cast<uint8_t>(address), i, model::RowOf(card.kind).start});
  }
  return blocks;
}

void OutputKeeper::ForgetRecord() {
  for (Card& card : cards_)
    for (Block& block : card.blocks) block.on_record.reset();
}

OutputKeeper::Commands OutputKeeper::AfterReboot(unsigned address) const {
  const Card& card = cards_[address];
  Commands restored = Restore(address);
  if (!restored.empty() || !card.kept) return restored;
  for (uint8_t block = 0; block < BlockCount(card.kind); ++block)
    if (const auto asked = card.blocks[block].asked)
      return {{static_cast<uint8_t>(address), block, *asked}};
  return {};
}

OutputKeeper::Commands OutputKeeper::Restore(unsigned address) const {
  const Card& card = cards_[address];
  Commands commands;
  if (!card.kept) return commands;
  for (uint8_t block = 0; block < BlockCount(card.kind); ++block) {
    const Block& each = card.blocks[block];
    if (each.asked && each.asked != each.on_record)
      commands.push_back({static_cast<uint8_t>(address), block, *each.asked});
  }
  const uint8_t start = model::RowOf(card.kind).start;
  std::ranges::stable_sort(commands, std::greater{}, [start](const WriteBlock& command) {
    return LinesOff(command.value, start);
  });
  return commands;
}

OutputKeeper::Commands OutputKeeper::Complete(const WriteBlock& command) const {
  const Card& card = cards_[command.address];
  Commands commands;
  for (uint8_t block = 0; block < BlockCount(card.kind); ++block) {
    const Block& each = card.blocks[block];
    const bool is_spoilt = card.kept ? !each.on_record : each.at_start == AtStart::kCard;
    if (block != command.block && each.asked && is_spoilt)
      commands.push_back({command.address, block, *each.asked});
  }
  commands.push_back(command);
  return commands;
}

std::optional<uint8_t> OutputKeeper::Asked(unsigned address, unsigned block) const {
  return block < kMostBlocks ? cards_[address].blocks[block].asked : std::nullopt;
}

}  // namespace hub::link
