// The commands of the daemon's IO port: how the hub writes them, and how the daemon reads what
// a client of a text port has written. Pure functions.
#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

#include "protocol/Hex.h"

namespace hub::protocol {

// The daemon takes each read of so many bytes for itself and cuts a command that is under way
// there, so the hub never has more than these unanswered.
inline constexpr size_t kMostBytesUnderWay = 255;
// One character more ends the daemon.
inline constexpr size_t kMostTextCharacters = 34;
// The daemon refuses more.
inline constexpr size_t kMostInfraredBytes = 35;

// Each command, and each line of the hub's text ports, ends so.
inline constexpr std::string_view kLineEnd = "\r\n";

enum class LcdControl : uint8_t {
  kClear,
  kLightOn,
  kLightOff,
  kCursorOn,
  kCursorOff,
  kBlinkOn,
  kBlinkOff
};

struct WriteBlock {
  uint8_t address = 0;  // 0..15, as in all of them
  uint8_t block = 0;    // 0..15
  uint8_t value = 0;
  bool operator==(const WriteBlock&) const = default;
};

struct WriteText {
  uint8_t address = 0;
  uint8_t column = 0;  // from 0, as the daemon counts
  uint8_t row = 0;
  std::string text;
  bool operator==(const WriteText&) const = default;
};

struct ControlLcd {
  uint8_t address = 0;
  LcdControl control = LcdControl::kClear;
  bool operator==(const ControlLcd&) const = default;
};

struct SendInfrared {
  uint8_t address = 0;
  Bytes bytes;
  bool operator==(const SendInfrared&) const = default;
};

using IoCommand = std::variant<WriteBlock, WriteText, ControlLcd, SendInfrared>;

// The line without its end.
std::string Format(const IoCommand& command);

// The address that the command is for.
uint8_t AddressOf(const IoCommand& command);

// The command as it can go out: a text in pieces that the daemon survives. Nothing where no piece
// can: a text with a line break in it, a code that is too long.
std::vector<IoCommand> Pieces(const IoCommand& command);

// The line as the daemon would take it: a digit that is none reads as 0, and so does one that is
// missing; what stands behind a command is passed over. Nothing where the daemon would call the
// line illegal whatever card is there. A text and a code come in whatever length they have.
std::optional<IoCommand> ParseIoCommand(std::string_view line);

}  // namespace hub::protocol
