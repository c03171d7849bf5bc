// The outputs of all cards: what clients asked for, and the rules by which it gets to the bus.
//
//   held ──Release──> free ──Hold──> held
//
// Held is the time in which the daemon's record of the cards is about to begin anew, or the
// adapter is not there: what is asked for then is pending, and goes out at the release. Without the
// adapter it is accepted at once, as nobody knows when that will be; else it is accepted when the
// daemon has acted on it, as at any other time. What was neither accepted nor written when a
// session ends is gone with it, as if nobody had asked. Owned by the link; one thread.
#pragma once

#include <functional>
#include <map>
#include <optional>
#include <utility>
#include <vector>

#include "link/OutputKeeper.h"
#include "link/Sender.h"
#include "model/Bus.h"

namespace hub::link {

class Outputs {
 public:
  struct Sinks {
    std::function<void(const protocol::WriteBlock& command)> asked;  // to be kept, in motion or not
    std::function<void(uint8_t address, uint8_t block)> forgotten;   // as if nobody had asked
    std::function<void(unsigned address, size_t blocks)> restored;
  };

  // What the daemon's record of the outputs is at a release.
  enum class Record {
    kAtStart,         // a discovery, or a new daemon; of motors perhaps
    kForcedToStart,   // a forced discovery: of motors, too
    kUnknown,         // of the same daemon, perhaps
    kOfAnEarlierHub,  // the same, and this hub has asked for nothing yet: nothing is sent
  };

  Outputs(model::Bus& bus, Sender& sender, Sinks sinks)
      : bus_(bus), sender_(sender), sinks_(std::move(sinks)) {}

  // From the hub's last run. Cards that are not there yet get theirs as they come.
  void Remember(const std::vector<protocol::WriteBlock>& asked);

  // The cards that the model has now.
  void TakeCards(model::Time now);

  // A block as somebody wants it; also without a session, when only that is noted.
  Receipt Write(const protocol::WriteBlock& command);
  // A block that is none of an output, nor of a card that may come, goes to the daemon as it is.
  bool IsForOutput(const protocol::WriteBlock& command) const;

  // What the block was asked to be stays so, whatever becomes of this session: a pulse goes back.
  void Insist(unsigned address, unsigned block);

  void Hold();
  void Release(Record record);
  void SendAgain();  // all that is kept, whatever is on record
  void NoteSilentLog(bool is_silent) { discoveries_go_unseen_ = is_silent; }
  void Lose(const Outbox::Abandoned& abandoned);       // the session has ended
  void TakeReboot(unsigned address, model::Time now);  // the card has begun anew by itself
  void TakeReceipt(const protocol::IoCommand& command, model::Time now);  // the daemon has acted

  // Tells what the card's blocks are to be, where that has changed without a command.
  void TellAsked(unsigned address) const;

  // What the block is to be, or the value that it starts with.
  uint8_t Asked(unsigned address, unsigned block) const;
  bool IsHeld() const { return is_held_; }
  uint64_t RestoredCount() const { return restored_count_; }

 private:
  using Place = std::pair<uint8_t, uint8_t>;  // address and block

  struct Pending {
    uint8_t value = 0;
    std::vector<Receipt> receipts;  // of those who wait for the release
  };

  bool IsKept(unsigned address) const;
  void NoteRecord(Record record);
  std::optional<uint8_t> KeptFor(uint8_t address, uint8_t block) const;
  void Keep(const protocol::WriteBlock& command);
  void KeepAccepted(const protocol::WriteBlock& command);
  void PutBack(Place place, std::optional<uint8_t> value);
  Receipt WriteLater(const protocol::WriteBlock& command);
  void AcceptPending();
  bool IsWithoutAdapter() const;
  Receipt Offer(const protocol::WriteBlock& command);
  void OfferPending(const protocol::WriteBlock& command);
  void Restore(unsigned address);
  void Resend(unsigned address, const OutputKeeper::Commands& commands);

  model::Bus& bus_;
  Sender& sender_;
  Sinks sinks_;
  OutputKeeper keeper_;
  bool is_held_ = true;
  bool discoveries_go_unseen_ = true;
  std::map<Place, Pending> pending_;
  std::map<Place, uint8_t> remembered_;  // of cards that did not come yet
  // What was asked for before that which is not accepted yet.
  std::map<Place, std::optional<uint8_t>> before_;
  uint64_t restored_count_ = 0;
};

}  // namespace hub::link
