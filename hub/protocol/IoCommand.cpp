#include "protocol/IoCommand.h"

#include <algorithm>

namespace hub::protocol {

namespace {

// Where the parts of a command stand.
constexpr size_t kAddressAt = 1;
constexpr size_t kKindAt = 2;
constexpr size_t kBlockAt = 3;
constexpr size_t kDataMarkAt = 4;
constexpr size_t kDataAt = 5;
constexpr size_t kStreamAt = 3;
constexpr size_t kInfraredAt = 5;
constexpr size_t kColumnAt = 6;
constexpr size_t kRowAt = 8;
constexpr size_t kTextAt = 11;

// That a command can name; a text that goes on behind it would begin anew at column 0.
constexpr size_t kLastColumn = 0xFF;

// By LcdControl.
constexpr std::array<std::string_view, 7> kControlWords{"CL", "LO", "LF", "CO", "CF", "BO", "BF"};

char CharAt(std::string_view line, size_t at) { return at < line.size() ? line[at] : '\0'; }

uint8_t DigitAt(std::string_view line, size_t at) {
  return ParseHexDigit(CharAt(line, at)).value_or(0);
}

// One character alone is the low digit.
uint8_t ByteAt(std::string_view line, size_t at) {
  if (at + 1 >= line.size()) return DigitAt(line, at);
  return static_cast<uint8_t>(DigitAt(line, at) * 16 + DigitAt(line, at + 1));
}

bool Contains(std::string_view line, std::string_view word) {
  return line.find(word) != std::string_view::npos;
}

std::string Head(uint8_t address) { return {'a', HexDigit(address)}; }

std::string Line(const WriteBlock& command) {
  return Head(command.address) + 'b' + HexDigit(command.block) + 'd' + HexByte(command.value);
}

std::string Line(const WriteText& command) {
  return Head(command.address) + "lPAp" + HexByte(command.column) + HexByte(command.row) + 't' +
         command.text;
}

std::string Line(const ControlLcd& command) {
  return Head(command.address) + 'l' +
         std::string(kControlWords[static_cast<size_t>(command.control)]);
}

std::string Line(const SendInfrared& command) {
  return Head(command.address) + "sHS" + HexBytes(command.bytes);
}

std::optional<IoCommand> ParseBlock(std::string_view line) {
  if (CharAt(line, kDataMarkAt) != 'd') return std::nullopt;
  return WriteBlock{DigitAt(line, kAddressAt), DigitAt(line, kBlockAt), ByteAt(line, kDataAt)};
}

std::optional<IoCommand> ParseLcd(std::string_view line) {
  const uint8_t address = DigitAt(line, kAddressAt);
  if (Contains(line, "PAp")) {
    const auto text = line.size() > kTextAt ? line.substr(kTextAt) : std::string_view{};
    return WriteText{address, ByteAt(line, kColumnAt), ByteAt(line, kRowAt), std::string(text)};
  }
  const auto* word = std::ranges::find(kControlWords, line.substr(kStreamAt, 2));
  if (word == kControlWords.end()) return std::nullopt;
  return ControlLcd{address, static_cast<LcdControl>(word - kControlWords.begin())};
}

std::optional<IoCommand> ParseInfrared(std::string_view line) {
  if (line.substr(kStreamAt, 2) != "HS") return std::nullopt;
  SendInfrared command{DigitAt(line, kAddressAt), {}};
  for (size_t at = kInfraredAt; at + 1 < line.size(); at += 2)
    command.bytes.push_back(ByteAt(line, at));
  return command;
}

struct Kind {
  char letter;
  std::optional<IoCommand> (*parse)(std::string_view line);
};

constexpr std::array<Kind, 3> kKinds{{{'b', ParseBlock}, {'l', ParseLcd}, {'s', ParseInfrared}}};

}  // namespace

std::string Format(const IoCommand& command) {
  return std::visit([](const auto& each) { return Line(each); }, command);
}

uint8_t AddressOf(const IoCommand& command) {
  return std::visit([](const auto& each) { return each.address; }, command);
}

std::vector<IoCommand> Pieces(const IoCommand& command) {
  if (const auto* code = std::get_if<SendInfrared>(&command);
      code != nullptr && code->bytes.size() > kMostInfraredBytes)
    return {};
  const auto* whole = std::get_if<WriteText>(&command);
  if (whole == nullptr) return {command};
  constexpr std::string_view kLineBreaks("\r\n\0", 3);
  if (whole->text.find_first_of(kLineBreaks) != std::string::npos) return {};
  std::vector<IoCommand> pieces;
  size_t at = 0;
  do {
    WriteText piece = *whole;
    piece.column = static_cast<uint8_t>(whole->column + at);
    piece.text = whole->text.substr(at, kMostTextCharacters);
    pieces.emplace_back(std::move(piece));
    at += kMostTextCharacters;
  } while (at < whole->text.size() && whole->column + at <= kLastColumn);
  return pieces;
}

std::optional<IoCommand> ParseIoCommand(std::string_view line) {
  if (CharAt(line, 0) != 'a' || line.size() <= kKindAt) return std::nullopt;
  for (const Kind& kind : kKinds)
    if (line[kKindAt] == kind.letter && line.size() >= kStreamAt) return kind.parse(line);
  return std::nullopt;
}

}  // namespace hub::protocol
