// The kinds of cards as one table: their words, their channels, the blocks that a command carries.
#pragma once

#include <cstdint>
#include <string_view>

namespace hub::model {

enum class Kind {
  kUnknown,  // the daemon found a card that neither it nor the hub has a name for
  kSilent,   // a card that did not answer the discovery
  kDigitalOutput,
  kDigitalInput,
  kServo,
  kMotor,
  kAnalogueInput,
  kKeys,
  kLcd,
  kInfrared,
};

enum class Direction { kNone, kInput, kOutput, kStream };

struct KindRow {
  Kind kind;
  std::string_view word;         // as clients read it
  std::string_view daemon_name;  // as the daemon lists it
  Direction direction;
  std::string_view channel_type;  // empty: no channels
  uint8_t channels;
  uint8_t blocks;  // bytes on the bus
  uint8_t start;   // what the daemon puts into an output block after a discovery
};

const KindRow& RowOf(Kind kind);

// By the name that DISCOVER lists; the unknown row where it has none.
const KindRow& FindDaemonName(std::string_view name);

// By the word that clients read; likewise.
const KindRow& FindWord(std::string_view word);

// The name that DISCOVER lists where no card is.
inline constexpr std::string_view kNoCard = "EMPTY";

// The block of a channel and, for lines, the bit in it.
inline constexpr unsigned kLinesPerBlock = 8;
bool HasLines(const KindRow& row);
unsigned BlockOf(const KindRow& row, unsigned channel);
unsigned BitOf(unsigned channel);

// The block with this channel changed: its bit, or all of it.
uint8_t WithChannel(const KindRow& row, uint8_t block, unsigned channel, uint8_t raw);

}  // namespace hub::model
