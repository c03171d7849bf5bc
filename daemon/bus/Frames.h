// The bytes of the card bus: what the daemon sends to the adapter and what comes
// back. Every one has its name here and nowhere else; docs/design/frames.md explains
// them to whoever builds a card.
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

// The most that the length byte can say.
inline constexpr std::size_t kMaxPayload = 255;

// First payload byte, host to adapter.
inline constexpr unsigned char kFrameWrite = 0x10;          // address, count, data
inline constexpr unsigned char kFramePoll = 0x20;           // address, block count
inline constexpr unsigned char kFrameDiscovery = 0x30;      // nothing more
inline constexpr unsigned char kFrameHardwareCheck = 0x40;  // the two bytes below
inline constexpr unsigned char kFrameRequest = 0x50;        // address, operation, register, value

inline constexpr std::array<unsigned char, 3> kHardwareCheckPayload{kFrameHardwareCheck, 0x6F,
                                                                    0x9A};

// First payload byte, adapter to host. A reply with any other first byte is a plain
// acknowledgement, unless it is one of the refusals below.
inline constexpr unsigned char kReplyDiscovery = '1';  // a type code for each address
inline constexpr unsigned char kReplyPoll = '!';       // address, a byte for each block
inline constexpr unsigned char kReplyQuery = 'Q';      // address, further bytes

// A reply that begins with one of these is a refusal: the daemon drops it.
inline constexpr unsigned char kRefusal12 = 0x12;
inline constexpr unsigned char kRefusalHash = '#';
inline constexpr unsigned char kRefusalDollar = '$';
inline constexpr unsigned char kRefusalN = 'N';
inline constexpr unsigned char kRefusalB = 'B';
inline constexpr unsigned char kRefusalC = 'C';

// First byte of "TME", the daemon's own word for a reply that did not come in time. An
// adapter that begins a reply with it makes the daemon close the link.
inline constexpr unsigned char kTimeoutMark = 'T';

// Where the parts of a poll or query reply stand.
inline constexpr std::size_t kReplyAddress = 1;
inline constexpr std::size_t kReplyBlocks = 2;
inline constexpr std::size_t kReplyValue = 3;

// Type codes, as the cards report them in discovery.
inline constexpr unsigned char kEmptyType = 0x00;
inline constexpr unsigned char kDigitalOutput = 0x03;
inline constexpr unsigned char kDigitalInput = 0x04;
inline constexpr unsigned char kServo = 0x05;
inline constexpr unsigned char kMotor = 0x06;
inline constexpr unsigned char kAnalogueInput = 0x07;
inline constexpr unsigned char kKeyMatrix = 0x08;
inline constexpr unsigned char kLcd = 0x09;
inline constexpr unsigned char kInfrared = 0x0A;
inline constexpr unsigned char kSilentType = 0xFF;  // the card did not answer discovery

// Code bytes of what is written to an LCD card.
inline constexpr unsigned char kLcdClear = 0;
inline constexpr unsigned char kLcdLightOn = 1;
inline constexpr unsigned char kLcdLightOff = 2;
inline constexpr unsigned char kLcdCursorOn = 3;
inline constexpr unsigned char kLcdCursorOff = 4;
inline constexpr unsigned char kLcdBlinkOn = 5;
inline constexpr unsigned char kLcdBlinkOff = 6;
inline constexpr unsigned char kLcdText = 9;  // XX, YY, text, a zero byte

// Operation of a card request.
inline constexpr unsigned char kRequestWrite = 0x01;
inline constexpr unsigned char kRequestRead = 0x40;

// Registers of the card requests. The servo and the motor card read a setting from another
// register than they write it to; where there are channels, the register is that of
// channel 0 and the others follow.
inline constexpr unsigned char kRegReboot = 0xAB;  // any card

inline constexpr unsigned char kRegAnalogueMask = 0x01;  // written and read
inline constexpr unsigned char kRegAnalogueStore = 0x02;

inline constexpr unsigned char kRegLcdSelfTest = 0x01;
inline constexpr unsigned char kRegLcdInitLight = 0x02;

inline constexpr unsigned char kRegServoStore = 0x74;
inline constexpr unsigned char kRegServoMove = 0x3F;
inline constexpr unsigned char kRegServoSetEndA = 0xC0;
inline constexpr unsigned char kRegServoSetEndB = 0xD0;
inline constexpr unsigned char kRegServoGetEndA = 0x21;
inline constexpr unsigned char kRegServoGetEndB = 0x27;

inline constexpr unsigned char kRegMotorSetRange = 0xC0;
inline constexpr unsigned char kRegMotorGetRange = 0x01;
inline constexpr unsigned char kRegMotorStore = 0xCD;
