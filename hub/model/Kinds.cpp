#include "model/Kinds.h"

#include <algorithm>
#include <array>

namespace hub::model {

namespace {

// In the order of Kind; the first serves every name that is not in the table.
constexpr std::array<KindRow, 10> kKinds{{
    // clang-format off
    {Kind::kUnknown,       "unknown",        "UNIDENTIFIED",                  Direction::kNone,   "",          0, 0, 0x00},
    {Kind::kSilent,        "silent",         "CARD?",                         Direction::kNone,   "",          0, 0, 0x00},
    {Kind::kDigitalOutput, "digital-output", "16 channel DIGITAL OUTPUT",     Direction::kOutput, "switch",   16, 2, 0xFF},
    {Kind::kDigitalInput,  "digital-input",  "16 channel DIGITAL INPUT",      Direction::kInput,  "contact",  16, 2, 0x00},
    {Kind::kServo,         "servo",          "6 channel RC SERVO CONTROLLER", Direction::kOutput, "position",  6, 6, 0x80},
    {Kind::kMotor,         "motor",          "3 channel DC MOTOR CONTROLLER", Direction::kOutput, "drive",     4, 4, 0x00},
    {Kind::kAnalogueInput, "analogue-input", "6 channel ANALOGUE INPUT",      Direction::kInput,  "level",     6, 6, 0x00},
    {Kind::kKeys,          "keys",           "KEYMX and ROTE CONTROLLER",     Direction::kInput,  "key",       1, 1, 0x00},
    {Kind::kLcd,           "lcd",            "ALPHANUMERIC LCD CONTROLLER",   Direction::kStream, "",          0, 0, 0x00},
    {Kind::kInfrared,      "ir",             "IR REMOTE CONTROLLER",          Direction::kStream, "code",      1, 0, 0x00},
    // clang-format on
}};

}  // namespace

const KindRow& RowOf(Kind kind) { return kKinds[static_cast<size_t>(kind)]; }

const KindRow& FindDaemonName(std::string_view name) {
  const auto* row = std::ranges::find(kKinds, name, &KindRow::daemon_name);
  return row == kKinds.end() ? kKinds[0] : *row;
}

const KindRow& FindWord(std::string_view word) {
  const auto* row = std::ranges::find(kKinds, word, &KindRow::word);
  return row == kKinds.end() ? kKinds[0] : *row;
}

bool HasLines(const KindRow& row) {
  return row.kind == Kind::kDigitalOutput || row.kind == Kind::kDigitalInput;
}

unsigned BlockOf(const KindRow& row, unsigned channel) {
  return HasLines(row) ? channel / kLinesPerBlock : channel;
}

unsigned BitOf(unsigned channel) { return channel % kLinesPerBlock; }

uint8_t WithChannel(const KindRow& row, uint8_t block, unsigned channel, uint8_t raw) {
  if (!HasLines(row)) return raw;
  const unsigned bit = 1U << BitOf(channel);
  return static_cast<uint8_t>(raw != 0 ? block | bit : block & ~bit);
}

}  // namespace hub::model
