// PERIFCARD, what the daemon knows of the card at one bus address.
//
// QELM owns a table of 17: one for each address and an extra one that stays empty.
// The serial thread fills the records; the master loop reads them, writes output
// blocks, switches polling and clears them for a new discovery. The two share every
// field without a lock, through runtime/Shared.h; only the poll frame, a list, has
// one.
#pragma once

#include <array>
#include <span>
#include <string>

#include "bus/Frames.h"
#include "runtime/ByteList.h"
#include "runtime/MutexClass.h"

// IoKind of a card.
inline constexpr int kOutputCard = 0;
inline constexpr int kInputCard = 1;
inline constexpr int kNoCard = 3;

inline constexpr int kAnalogueChannels = 6;

class PERIFCARD {
 public:
  // Back to the empty state. Address and SampleCount stay as they are.
  void clearPerifCard();

  // Sets the record to the kind that discovery reported; false for an unknown code. It
  // does not clear the record first: a card that is discovered a second time is polled
  // twice in each frame from then on.
  bool setCardData(unsigned char type, unsigned char address);

  // Takes the blocks of a poll reply and marks those that changed; true if any did.
  // Blocks that a short reply lacks count as 0 on an analogue card and stay as they are
  // on the others. Serial thread.
  bool TakeInput(std::span<const unsigned char> blocks);

  // Files the first 16 bytes of a reply, absent ones as 0. The marker byte is written
  // last: a thread that sees the marker sees the whole reply. Serial thread.
  void FileQueryReply(std::span<const unsigned char> reply);
  // Master loop, before a request.
  void ClearQueryReply();

  // "a3b0d40": the input report of one block, as the IO client reads it.
  QList Report(unsigned address, unsigned block) const;

  std::string Name() const;
  QList CopyPollFrame();

  int IoKind = kNoCard;                               // kOutputCard, kInputCard or kNoCard
  int BlockCount = 0;                                 // data blocks the card has, 0..21
  unsigned char Address = 0;                          // 0..15; not read by the daemon
  unsigned char CardType = kEmptyType;                // as discovery reported it
  std::array<char, 40> CardName{};                    // display name of CardType, zero-terminated
  std::array<unsigned char, 20> BlockData{};          // last value written or read, by block
  std::array<unsigned char, 20> BlockChanged{};       // 1: changed since the last report
  std::array<unsigned char, 20> QueryReply{};         // last reply to a card request, 16 bytes
  unsigned char PollEnabled = 0;                      // 1: polled each round, if an input card
  std::array<int, kAnalogueChannels> AnalogueSums{};  // since the last average, by channel
  int SampleCount = 0;        // poll replies in AnalogueSums; serial thread only
  int SamplesPerAverage = 6;  // poll replies that make one average
  QList PollFrame;            // payload that polls the card; guarded by PollLock
  CMutexClass PollLock;

 private:
  bool StoreInput(std::size_t block, unsigned char value);
  bool CompareBlocks(std::span<const unsigned char> blocks);
  bool AverageChannels(std::span<const unsigned char> blocks);
  void AppendPoll(unsigned char address, int blocks);
  void SetName(const char* name);
};
