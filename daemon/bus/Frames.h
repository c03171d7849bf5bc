// The bytes of the card bus: what the daemon sends to the adapter and what comes
// back. docs/bus-frames.md explains them to whoever builds a card.
//
// A frame on the wire is a length byte N followed by N payload bytes, both ways.
#pragma once

#include <array>
#include <cstddef>

// Addresses 0 to F, one card each.
inline constexpr int kCardCount = 16;
// The queue for bus-wide frames and card requests follows those of the cards.
inline constexpr int kDriverQueue = 16;
inline constexpr int kQueueCount = 17;

// Blocks that a card record holds and reports.
inline constexpr int kBlockCount = 16;

// The length byte says no more than that.
inline constexpr std::size_t kMaxPayload = 255;

// First payload byte, host to adapter.
inline constexpr unsigned char kFrameWrite = 0x10;          // address, count, data
inline constexpr unsigned char kFramePoll = 0x20;           // address, block count
inline constexpr unsigned char kFrameDiscovery = 0x30;      // nothing more
inline constexpr unsigned char kFrameHardwareCheck = 0x40;  // the two bytes below
inline constexpr unsigned char kFrameRequest = 0x50;        // address, operation, register, value

inline constexpr std::array<unsigned char, 3> kHardwareCheckPayload{kFrameHardwareCheck, 0x6F,
                                                                    0x9A};

// Operation of a card request.
inline constexpr unsigned char kRequestWrite = 0x01;
inline constexpr unsigned char kRequestRead = 0x40;

// First payload byte, adapter to host; any other is a plain acknowledgement.
inline constexpr unsigned char kReplyDiscovery = '1';  // a type code for each address
inline constexpr unsigned char kReplyPoll = '!';       // address, a byte for each block
inline constexpr unsigned char kReplyQuery = 'Q';      // address, further bytes

// Where the parts of a poll or query reply stand.
inline constexpr std::size_t kReplyAddress = 1;
inline constexpr std::size_t kReplyBlocks = 2;
inline constexpr std::size_t kReplyValue = 3;

// Code bytes of the LCD card's control and text streams.
inline constexpr unsigned char kLcdText = 9;  // XX, YY, text, a zero byte
