// What became of a command.
#pragma once

namespace hub::link {

enum class Outcome {
  kAccepted,  // the daemon has acted on it
  kIllegal,   // the daemon refused it: no such card, or of another kind
  kTooFast,   // the card's queue is full, and this command cannot be merged
  kAbsent,    // no session, or it ended before the command was written
  kLost,      // it was written, and no receipt came before the session ended: perhaps it was done
};

}  // namespace hub::link
