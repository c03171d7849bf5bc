// The IO command language: commands of the IO client become frames for the cards.
#include <array>
#include <cstdio>
#include <string_view>

#include "bus/PerifCard.h"
#include "bus/SerialInterface.h"
#include "core/qelm.h"
#include "runtime/Fatal.h"
#include "runtime/Queue.h"
#include "runtime/Shared.h"
#include "runtime/Values.h"

namespace {

// Where the parts of a command stand.
constexpr std::size_t kAddressAt = 1;
constexpr std::size_t kKindAt = 2;
constexpr std::size_t kBlockAt = 3;
constexpr std::size_t kDataMarkAt = 4;
constexpr std::size_t kDataAt = 5;
constexpr std::size_t kStreamCodeAt = 3;
constexpr std::size_t kInfraredAt = 5;
constexpr std::size_t kLcdColumnAt = 6;
constexpr std::size_t kLcdRowAt = 8;
constexpr std::size_t kLcdTextAt = 11;

constexpr std::size_t kMaxLcdText = 34;
// A stream frame of the infrared card holds 39 bytes, four of them in front.
constexpr std::size_t kMaxInfrared = 35;

// What is not there reads as the digit 0.
char CharAt(std::string_view command, std::size_t at) {
  return at < command.size() ? command[at] : '\0';
}

// A single digit at the end of the command counts as the low one.
unsigned char HexAt(std::string_view command, std::size_t at) {
  return at < command.size() ? Convert_HexStr2Byte(std::string(command.substr(at, 2))) : 0;
}

unsigned char AddressOf(std::string_view command) {
  return HexCharToByte(CharAt(command, kAddressAt));
}

void QueueFrame(QELM& qelm, unsigned char address, const QList& payload) {
  qelm.SerialInterface->CardQueues[address]->ToQueue(payload);
}

bool IsCard(const QELM& qelm, unsigned char address, unsigned char type) {
  return LoadShared(qelm.Cards[address].CardType) == type;
}

// Cards that take blocks, and how many of them a frame carries.
struct BlockCard {
  unsigned char type;
  unsigned char blocks;
};

// A motor card takes four of its six.
constexpr auto kBlockCards = std::to_array<BlockCard>({
    {kDigitalOutput, 2},
    {kServo, 6},
    {kMotor, 4},
});
static_assert(kBlockCards.size() == 3);

// All blocks of the card, whichever changed. For a card that takes no blocks the payload
// is empty, and the serial thread drops it unsent.
QList BlockPayload(const PERIFCARD& card, unsigned char address) {
  for (const BlockCard& row : kBlockCards) {
    if (LoadShared(card.CardType) != row.type) continue;
    QList payload = MakeQList({kFrameWrite, address, row.blocks});
    for (std::size_t b = 0; b < row.blocks; ++b)
      payload.push_back(static_cast<char>(LoadShared(card.BlockData[b])));
    return payload;
  }
  return {};
}

bool WriteBlock(QELM& qelm, std::string_view command) {
  const unsigned char address = AddressOf(command);
  PERIFCARD& card = qelm.Cards[address];
  const unsigned char block = HexCharToByte(CharAt(command, kBlockAt));
  StoreShared(card.BlockData[block], HexAt(command, kDataAt));
  QueueFrame(qelm, address, BlockPayload(card, address));
  return true;
}

bool SendInfrared(QELM& qelm, std::string_view command) {
  const unsigned char address = AddressOf(command);
  if (command.substr(kStreamCodeAt, 2) != "HS" || !IsCard(qelm, address, kInfrared)) return false;
  const std::size_t count = (command.size() - kInfraredAt) / 2;
  if (count > kMaxInfrared) return false;
  const auto n = static_cast<unsigned char>(count);
  QList payload = MakeQList({kFrameWrite, address, static_cast<unsigned char>(n + 1), n});
  for (std::size_t i = 0; i < count; ++i)
    payload.push_back(static_cast<char>(HexAt(command, kInfraredAt + 2 * i)));
  QueueFrame(qelm, address, payload);
  return true;
}

struct LcdControl {
  std::string_view word;
  unsigned char code;
};

constexpr auto kLcdControls = std::to_array<LcdControl>({
    {"CL", kLcdClear},
    {"LO", kLcdLightOn},
    {"LF", kLcdLightOff},
    {"CO", kLcdCursorOn},
    {"CF", kLcdCursorOff},
    {"BO", kLcdBlinkOn},
    {"BF", kLcdBlinkOff},
});
static_assert(kLcdControls.size() == 7);

bool ControlLcd(QELM& qelm, std::string_view command) {
  const unsigned char address = AddressOf(command);
  if (!IsCard(qelm, address, kLcd)) return false;
  for (const LcdControl& row : kLcdControls) {
    if (command.substr(kStreamCodeAt, 2) != row.word) continue;
    QueueFrame(qelm, address, MakeQList({kFrameWrite, address, 1, row.code}));
    return true;
  }
  return false;
}

bool WriteLcd(QELM& qelm, std::string_view command) {
  const std::string_view text = command.size() > kLcdTextAt ? command.substr(kLcdTextAt) : "";
  if (text.size() > kMaxLcdText) EndAtLimit("LCD text over 34 characters");
  const unsigned char address = AddressOf(command);
  if (!IsCard(qelm, address, kLcd)) return false;
  QList payload = MakeQList({kFrameWrite, address, static_cast<unsigned char>(text.size() + 4),
                             kLcdText, HexAt(command, kLcdColumnAt), HexAt(command, kLcdRowAt)});
  payload.insert(payload.end(), text.begin(), text.end());
  payload.push_back('\0');
  QueueFrame(qelm, address, payload);
  return true;
}

// A command begins with "a" and an address; the first row that fits decides.
struct IoCommand {
  char kind;
  char data_mark;  // 0: any
  std::string_view contains;
  bool (*run)(QELM& qelm, std::string_view command);  // false: the command is illegal
};

// clang-format off
constexpr auto kIoCommands = std::to_array<IoCommand>({
    // third char.  fifth  and somewhere  then
    {'b',           'd',   "",            WriteBlock},
    {'s',           0,     "HS",          SendInfrared},
    {'l',           0,     "PAp",         WriteLcd},
    {'l',           0,     "",            ControlLcd},
});
// clang-format on
static_assert(kIoCommands.size() == 4);

bool Fits(const IoCommand& row, std::string_view command) {
  if (CharAt(command, 0) != 'a' || CharAt(command, kKindAt) != row.kind) return false;
  if (row.data_mark != 0 && CharAt(command, kDataMarkAt) != row.data_mark) return false;
  return command.find(row.contains) != std::string_view::npos;
}

bool RunCommand(QELM& qelm, std::string_view command) {
  for (const IoCommand& row : kIoCommands)
    if (Fits(row, command)) return row.run(qelm, command);
  return false;
}

void ServeCommand(QELM& qelm, const std::string& command) {
  try {
    if (RunCommand(qelm, command)) return;
    qelm.ReplyOnCae("COE:Illegal command -> " + command);
  } catch (int value) {
    // Nothing here throws a number: docs/design/contract.md.
    std::printf("Caught an exception -- value is: %d\nka>%s<\n", value, command.c_str());
    qelm.ReplyOnCae("COE:Parser exception -> " + command);
  }
  qelm.ReplyOnCae(">");
}

}  // namespace

bool QELM::ParseOutCommand(const QList& message) {
  const std::string text = Convert_QList2String(message);
  const std::string& separator = Config.IoDescriptor.InpSeparator;
  std::size_t begin = 0;
  while (begin < text.size()) {
    const std::size_t found = separator.empty() ? std::string::npos : text.find(separator, begin);
    const std::size_t end = found == std::string::npos ? text.size() : found;
    if (end > begin) ServeCommand(*this, text.substr(begin, end - begin));
    begin = end + separator.size();
  }
  return true;
}
