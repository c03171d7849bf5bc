#include "bus/PerifCard.h"

#include <algorithm>
#include <cstdio>
#include <cstring>

#include "runtime/Shared.h"

namespace {

struct CardKind {
  unsigned char type;
  const char* name;
  int io_kind;
  int block_count;
  int preset_blocks;  // how many blocks start with the value below
  unsigned char preset;
};

// The first row stands for every code that is in no other row; its own code is not used.
constexpr auto kKinds = std::to_array<CardKind>({
    {kEmptyType, "UNIDENTIFIED", kNoCard, 0, 0, 0},
    {kEmptyType, "EMPTY", kNoCard, 0, 0, 0},
    {kDigitalOutput, "16 channel DIGITAL OUTPUT", kOutputCard, 2, 2, 0xFF},
    {kDigitalInput, "16 channel DIGITAL INPUT", kInputCard, 2, 0, 0},
    {kServo, "6 channel RC SERVO CONTROLLER", kOutputCard, 6, 6, 0x80},
    {kMotor, "3 channel DC MOTOR CONTROLLER", kOutputCard, 6, 0, 0},
    {kAnalogueInput, "6 channel ANALOGUE INPUT", kInputCard, 6, 0, 0},
    {kKeyMatrix, "KEYMX and ROTE CONTROLLER", kInputCard, 1, 0, 0},
    {kLcd, "ALPHANUMERIC LCD CONTROLLER", kOutputCard, 21, 0, 0},
    {kInfrared, "IR REMOTE CONTROLLER", kOutputCard, 1, 0, 0},
    {kSilentType, "CARD?", kNoCard, 0, 0, 0},
});
static_assert(kKinds.size() == 11);
constexpr const CardKind& kUnidentified = kKinds[0];

const CardKind& FindKind(unsigned char type) {
  const auto* kind = std::find_if(kKinds.begin() + 1, kKinds.end(),
                                  [type](const CardKind& row) { return row.type == type; });
  return kind == kKinds.end() ? kUnidentified : *kind;
}

template <class Array>
void ClearShared(Array& fields, int count) {
  for (int i = 0; i < count; ++i) StoreShared(fields[static_cast<std::size_t>(i)], {});
}

}  // namespace

void PERIFCARD::clearPerifCard() {
  StoreShared(IoKind, kNoCard);
  StoreShared(BlockCount, 0);
  StoreShared(CardType, kEmptyType);
  SetName(FindKind(kEmptyType).name);
  ClearShared(AnalogueSums, kAnalogueChannels);
  StoreShared(SamplesPerAverage, 6);
  ClearShared(BlockData, kBlockCount);
  ClearShared(BlockChanged, kBlockCount);
  StoreShared<unsigned char>(PollEnabled, 0);
  const CMutexGuard guard(PollLock);
  PollFrame.clear();
}

bool PERIFCARD::setCardData(unsigned char type, unsigned char address) {
  const CardKind& kind = FindKind(type);
  StoreShared(Address, address);
  StoreShared(CardType, type);
  SetName(kind.name);
  StoreShared(IoKind, kind.io_kind);
  StoreShared(BlockCount, kind.block_count);
  for (int b = 0; b < kind.preset_blocks; ++b)
    StoreShared(BlockData[static_cast<std::size_t>(b)], kind.preset);
  if (kind.io_kind == kInputCard) {
    StoreShared<unsigned char>(PollEnabled, 1);
    AppendPoll(address, kind.block_count);
  }
  return &kind != &kUnidentified;
}

// A frame has room for 85 polls of the card; further ones are left out.
void PERIFCARD::AppendPoll(unsigned char address, int blocks) {
  const QList poll = MakeQList({kFramePoll, address, static_cast<unsigned char>(blocks)});
  const CMutexGuard guard(PollLock);
  if (PollFrame.size() + poll.size() > kMaxPayload) return;
  PollFrame.insert(PollFrame.end(), poll.begin(), poll.end());
}

QList PERIFCARD::CopyPollFrame() {
  const CMutexGuard guard(PollLock);
  return PollFrame;
}

bool PERIFCARD::TakeInput(std::span<const unsigned char> blocks) {
  ClearShared(BlockChanged, kBlockCount);
  switch (LoadShared(CardType)) {
    case kDigitalInput:
      return CompareBlocks(blocks.first(std::min<std::size_t>(blocks.size(), 2)));
    case kKeyMatrix:
      return CompareBlocks(blocks.first(std::min<std::size_t>(blocks.size(), 1)));
    case kAnalogueInput:
      return AverageChannels(blocks);
    default:
      return false;
  }
}

bool PERIFCARD::StoreInput(std::size_t block, unsigned char value) {
  if (LoadShared(BlockData[block]) == value) return false;
  StoreShared(BlockData[block], value);
  StoreShared<unsigned char>(BlockChanged[block], 1);
  return true;
}

bool PERIFCARD::CompareBlocks(std::span<const unsigned char> blocks) {
  bool changed = false;
  for (std::size_t b = 0; b < blocks.size(); ++b) changed |= StoreInput(b, blocks[b]);
  return changed;
}

// The reply after the last sample makes the average be taken, and is itself dropped.
bool PERIFCARD::AverageChannels(std::span<const unsigned char> blocks) {
  bool changed = false;
  const bool is_complete = SampleCount >= LoadShared(SamplesPerAverage);
  for (std::size_t k = 0; k < AnalogueSums.size(); ++k) {
    const int sum = LoadShared(AnalogueSums[k]);
    const int sample = k < blocks.size() ? blocks[k] : 0;
    StoreShared(AnalogueSums[k], is_complete ? 0 : sum + sample);
    if (is_complete) changed |= StoreInput(k, static_cast<unsigned char>(sum / SampleCount));
  }
  SampleCount = is_complete ? 0 : SampleCount + 1;
  return changed;
}

void PERIFCARD::FileQueryReply(std::span<const unsigned char> reply) {
  const auto byte = [reply](std::size_t i) { return i < reply.size() ? reply[i] : 0; };
  for (std::size_t i = 1; i < kBlockCount; ++i)
    StoreShared(QueryReply[i], static_cast<unsigned char>(byte(i)));
  Publish(QueryReply[0], static_cast<unsigned char>(byte(0)));
}

void PERIFCARD::ClearQueryReply() { ClearShared(QueryReply, kBlockCount); }

QList PERIFCARD::Report(unsigned address, unsigned block) const {
  std::array<char, 16> report{};
  std::snprintf(report.data(), report.size(), "a%Xb%Xd%02X", address, block,
                LoadShared(BlockData[block]));
  return Convert_CharBuff2QList(report.data());
}

void PERIFCARD::SetName(const char* name) {
  const std::size_t length = std::min(std::strlen(name), CardName.size() - 1);
  for (std::size_t i = 0; i < length; ++i) StoreShared(CardName[i], name[i]);
  StoreShared(CardName[length], '\0');
}

std::string PERIFCARD::Name() const {
  std::string name;
  for (const char& c : CardName) {
    const char letter = LoadShared(c);
    if (letter == '\0') break;
    name += letter;
  }
  return name;
}
