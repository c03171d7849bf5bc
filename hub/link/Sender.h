// Commands on their way to the daemon: lets them out of the outbox as the bus takes them, and
// gives everybody who waits the receipt.
//
// The gate is shut while the daemon's record of the cards is about to change: what goes out then
// would be done with half of it. Owned by the link; one thread.
#pragma once

#include <boost/asio/any_io_executor.hpp>
#include <boost/asio/awaitable.hpp>
#include <boost/asio/steady_timer.hpp>
#include <chrono>
#include <deque>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "link/OneShot.h"
#include "link/Outbox.h"
#include "link/Outcome.h"
#include "link/PaceKeeper.h"

namespace hub::link {

using Receipt = std::shared_ptr<OneShot<Outcome>>;

class Sender {
 public:
  struct Sinks {
    std::function<void(std::string_view lines)> write;
    std::function<void(const protocol::IoCommand& command)> acted;  // the daemon, on it
  };

  Sender(boost::asio::any_io_executor executor, Sinks sinks);

  // Whether so many texts or codes would be taken; a refusal counts.
  bool HasPlace(unsigned address, size_t count);
  // A doubtful command is one that the daemon may refuse.
  Receipt Offer(const protocol::IoCommand& command, bool is_doubtful = false);
  Receipt Answered(Outcome outcome) const;  // a receipt for what needs no sending
  Receipt Unanswered() const;               // for what is not offered yet
  void PassOn(Receipt receipt, std::vector<Receipt> followers);  // its outcome is theirs, too

  bool IsOpen() const { return is_open_; }
  void Open();                  // a session is there
  Outbox::Abandoned Abandon();  // it has ended: nobody's command was received
  void SetGate(bool is_open);
  boost::asio::awaitable<void> Drain();  // until all that is under way was received

  bool TakeEcho(std::string_view line);     // of MON; false where it is no receipt
  void TakeIllegal(std::string_view line);  // of the console
  void Flush();                             // lets out what may go
  boost::asio::awaitable<void> Run();       // ends when the daemon acts on nothing any more
  PaceKeeper& Pace() { return pace_; }

  uint64_t CommandCount() const { return command_count_; }
  uint64_t MergedCount() const { return outbox_.MergedCount(); }
  uint64_t RefusedCount() const { return refused_count_; }

 private:
  struct Doubt {
    std::string line;
    Ticket ticket;
    Receipt receipt;
    SteadyTime until = SteadyTime::max();  // for so long after the echo a refusal can come
  };

  void NoteProgress();
  void Answer(Ticket ticket, Outcome outcome);
  void AnswerAll(const std::vector<Outbox::Entry>& entries, Outcome outcome);
  void AcceptLater(Doubt& doubt);
  void ForgetOldDoubts();

  boost::asio::any_io_executor executor_;
  Sinks sinks_;
  Outbox outbox_;
  PaceKeeper pace_;
  std::unordered_map<Ticket, Receipt> receipts_;
  std::deque<Doubt> doubts_;
  bool is_open_ = false;
  bool is_gate_open_ = false;
  boost::asio::steady_timer wake_;
  SteadyTime last_progress_{};             // a receipt, or a write while nothing was under way
  std::optional<SteadyTime> alone_since_;  // of the latter, until its receipt
  std::shared_ptr<OneShot<bool>> drained_;
  uint64_t command_count_ = 0;
  uint64_t refused_count_ = 0;
};

}  // namespace hub::link
