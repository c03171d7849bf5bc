// What the link asks the daemon of its own accord in a session, and what follows from the answers
// and from the log: which cards there are, what inputs show, when outputs may go out.
//
// It has a few tasks, each due at some time; the conversation does one after the other. Owned by
// the link; one thread.
#pragma once

#include <array>
#include <boost/asio/any_io_executor.hpp>
#include <boost/asio/awaitable.hpp>
#include <boost/asio/steady_timer.hpp>
#include <functional>
#include <optional>
#include <string>

#include "link/ConsoleQueue.h"
#include "link/LogState.h"
#include "link/Outputs.h"
#include "link/Sender.h"
#include "model/Bus.h"

namespace hub::link {

// When the daemon is asked for its cards again, after it has named these. It may have asked its
// adapter for none yet, and then it is asked soon.
SteadyTime::duration UntilNextTable(const protocol::CardNames& names,
                                    SteadyTime::duration since_found,
                                    std::chrono::milliseconds cards_every);

class Survey {
 public:
  using Tell = std::function<void(std::string kind, std::string text)>;  // to the journal

  // Asks for the cards again after so long.
  Survey(boost::asio::any_io_executor executor, std::chrono::milliseconds cards_every,
         model::Bus& bus, ConsoleQueue& console, Sender& sender, Outputs& outputs, LogState& log,
         Tell tell);

  // One session; begins its work when all ports have greeted. Ends when an answer stays away.
  boost::asio::awaitable<void> Run();
  // `is_followed`: the log is read, and the daemon writes it.
  void Begin(bool is_followed);
  void Lose();

  void TakeLogLine(const protocol::LogLine& line);  // written now
  void TakeOldLog(std::chrono::seconds age);        // what was written before is in the log state

  // The answer to a line that somebody else has asked.
  void Understand(const protocol::Lines& answer);

  // Around a line that makes the daemon forget all cards.
  boost::asio::awaitable<void> BeginForced();
  void EndForced(bool is_answered);

 private:
  enum Task { kSettle, kConfirm, kTable, kPolling, kInputs, kTaskCount };

  boost::asio::awaitable<bool> Introduce();
  boost::asio::awaitable<bool> Do(Task task);
  boost::asio::awaitable<bool> AskVersion();
  boost::asio::awaitable<bool> AskTable();
  boost::asio::awaitable<bool> AskPolling();
  boost::asio::awaitable<bool> AskInputs();
  void ShowPolling();
  void TakeTable(const protocol::CardNames& names);
  bool HasNewCard(const protocol::CardNames& names) const;
  void SettleWhenFound();
  void ReleaseNow();
  void Release(Outputs::Record record);
  void Schedule(Task task, SteadyTime when);
  void SetPause(std::optional<std::chrono::microseconds> pause);
  void ShowAdapter();

  const std::chrono::milliseconds cards_every_;
  model::Bus& bus_;
  ConsoleQueue& console_;
  Sender& sender_;
  Outputs& outputs_;
  LogState& log_;
  Tell tell_;
  boost::asio::steady_timer wake_;

  // Of this session.
  std::array<SteadyTime, kTaskCount> due_;
  bool is_begun_ = false;
  int forced_ = 0;            // lines under way that make the daemon forget all cards
  bool is_followed_ = false;  // what the log does not say has not happened
  std::optional<protocol::CardNames> listed_;
  std::optional<protocol::Polling> polling_;  // as it was said last

  // For ever.
  bool has_released_ = false;  // in any session: what clients asked for is this hub's
  SteadyTime found_at_{};      // when the adapter was found last
};

}  // namespace hub::link
