// The parts of the link and how they are wired: what comes from the daemon goes to the part that
// understands it, what the parts decide goes to the daemon, the model and the journal.
#pragma once

#include <array>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "link/Backoff.h"
#include "link/ConsoleQueue.h"
#include "link/Link.h"
#include "link/LogFollower.h"
#include "link/LogState.h"
#include "link/Motions.h"
#include "link/Outputs.h"
#include "link/Sender.h"
#include "link/Sessions.h"
#include "link/Survey.h"

namespace hub::link {

struct Link::Parts : std::enable_shared_from_this<Link::Parts> {
  Parts(boost::asio::io_context& context, LinkOptions options, model::Bus& the_bus,
        Sinks the_sinks);

  void Start();
  void Stop();

  // What a request sets in motion, and what stands still because of it.
  struct Moves {
    unsigned address = 0;
    bool is_pulse = false;
    std::vector<Motions::Moving> planned;
    std::vector<Motions::Moving> halted;
  };
  // Targets that move become where they begin.
  Moves Plan(unsigned address, std::vector<Target>& targets, const Motion& motion);
  // The outcome of the commands is there: what was taken begins, what was not is as if nobody had
  // asked.
  void Settle(const Moves& moves, Outcome outcome);

  // Blocks that bring these channels of an output card where they shall be.
  std::vector<Receipt> Write(unsigned address, const std::vector<Target>& targets);
  // Streams that the daemon keeps while it has no adapter must not become too many.
  bool IsTooMuchWithoutAdapter(unsigned address, size_t count);

  boost::asio::any_io_executor executor;
  model::Bus& bus;
  Sinks sinks;
  LogState log_state;
  Sessions sessions;
  ConsoleQueue console;
  Sender sender;
  Outputs outputs;
  Survey survey;
  Motions motions;
  LogFollower log;
  bool is_stopped = false;
  bool is_up = false;
  uint64_t session_count = 0;
  uint64_t report_count = 0;

 private:
  static boost::asio::awaitable<void> Connect(std::shared_ptr<Parts> self);
  static boost::asio::awaitable<void> FollowLog(std::shared_ptr<Parts> self);
  boost::asio::awaitable<void> Converse();

  void TakeLines(protocol::Port port, std::vector<std::string> lines);
  void TakeReport(const std::string& line);
  void TakeMonitored(const std::string& line);
  void TakeIllegal(const std::string& command);
  void TakeLogLine(const protocol::LogLine& line);
  void BeginIfGreeted();
  void Lose();
  void SetDaemon(model::DaemonState state, std::optional<protocol::Port> waiting_for = {});
  void TellAsked(const protocol::WriteBlock& command);
  void Tell(std::string kind, std::string text) const;

  Backoff backoff_;
  boost::asio::steady_timer pause_;
  bool has_prompt_ = false;  // of the console, in this session
  uint64_t log_lines_ = 0;   // written in this attempt: the daemon's log is this one
  std::string last_error_;   // of the log, told once
  std::map<std::pair<uint8_t, uint8_t>, uint8_t> told_;  // by address and block
  std::array<size_t, protocol::kCardCount> sent_without_adapter_{};
};

}  // namespace hub::link
