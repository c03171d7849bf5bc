// Outputs that stay what clients asked for.
//
// A command carries the whole card as the daemon has it on record. A discovery puts that record
// back to its start values, so the next command would switch other lines of the card too. This
// class knows both, what was asked for and what is on record, and says what to send again.
//
// A frame shows the asked value of the blocks that were sent and the start value of the others,
// so with several blocks off their start value the first frames are wrong for a round each. The
// order makes the wrong as small as can be: the block with the most lines off goes first.
//
// A card that is not kept begins from its start values each time. It goes on to show what it did
// before a discovery until the next frame, which takes all of it along. After its own reboot it is
// the record that is behind, and the other blocks go out at their start value before a command.
// Pure; one thread.
#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <vector>

#include "model/Kinds.h"
#include "protocol/ConsoleReplies.h"
#include "protocol/IoCommand.h"

namespace hub::link {

class OutputKeeper {
 public:
  using Commands = std::vector<protocol::WriteBlock>;

  static constexpr size_t kMostBlocks = 6;

  // The kind of card that is there; a card of another kind forgets what was asked for.
  void SetKind(unsigned address, model::Kind kind);

  // Whether the card is restored at all.
  void SetKept(unsigned address, bool kept) { cards_[address].kept = kept; }

  // What a client asked for, as it goes to the daemon.
  void NoteAsked(const protocol::WriteBlock& command);

  // What the store remembers from before: asked for, and not known to be on record.
  void Remember(const protocol::WriteBlock& command);

  // As if nobody had asked.
  void Forget(unsigned address, unsigned block) { cards_[address].blocks[block].asked.reset(); }

  // A discovery: the daemon's record is at its start values. One that was not forced leaves that
  // of motors as it was, unless the daemon is a new one.
  void NoteDiscovery(bool was_forced = false);

  // A card that is not kept has begun anew by itself.
  void NoteReboot(unsigned address);

  // The daemon has acted on a command: the other blocks that its frame has put back.
  Commands TakeFrame(unsigned address);

  // The daemon began anew, or nobody knows what is on record.
  void ForgetRecord();

  // The card itself has begun anew and the record has not: one command makes it right again.
  Commands AfterReboot(unsigned address) const;

  // What makes the card show what was asked for; empty where it does, or is not kept.
  Commands Restore(unsigned address) const;

  // A command, and before it the other blocks of the card, where the record would spoil them.
  Commands Complete(const protocol::WriteBlock& command) const;

  std::optional<uint8_t> Asked(unsigned address, unsigned block) const;

 private:
  // Who is at the start value already, of a card that is not kept.
  enum class AtStart { kBothOrNone, kRecord, kCard };

  struct Block {
    std::optional<uint8_t> asked;
    std::optional<uint8_t> on_record;
    AtStart at_start = AtStart::kBothOrNone;
  };
  struct Card {
    model::Kind kind = model::Kind::kUnknown;
    bool kept = true;
    std::array<Block, kMostBlocks> blocks{};
  };

  std::array<Card, protocol::kCardCount> cards_{};
};

}  // namespace hub::link
