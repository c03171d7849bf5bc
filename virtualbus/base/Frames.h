// The bytes of the bus by name, and what a frame means in words.
// On the line every frame has a length byte in front; here a frame is its payload alone.
#pragma once

#include <string>

#include "base/Text.h"

namespace virtualbus {

// First byte of what the host sends.
constexpr uint8_t kWrite = 0x10;          // address, count, count bytes
constexpr uint8_t kPoll = 0x20;           // address, count
constexpr uint8_t kDiscover = 0x30;       // nothing more
constexpr uint8_t kHardwareCheck = 0x40;  // 0x6F 0x9A
constexpr uint8_t kRequest = 0x50;        // address, operation, register, value

// Operation byte of a card request.
constexpr uint8_t kWriteRegister = 0x01;
constexpr uint8_t kReadRegister = 0x40;
constexpr uint8_t kRebootRegister = 0xAB;  // every card has it

// First byte of what the adapter answers.
constexpr uint8_t kTaken = 0x06;
constexpr uint8_t kPolled = '!';      // address, one byte per block
constexpr uint8_t kDiscovered = '1';  // 16 type codes
constexpr uint8_t kRefused = 'N';
constexpr uint8_t kAnswered = 'Q';  // address, register, value
constexpr uint8_t kIdentity = 'X';  // text, the version in its characters 1 to 4

// Type codes of a discovery reply that are no card kind.
constexpr uint8_t kNoCard = 0x00;
constexpr uint8_t kSilentCard = 0xFF;

enum class Direction { kFromHost, kToHost };

std::string Describe(Direction direction, const Bytes& frame);

}  // namespace virtualbus
