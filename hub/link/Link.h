// The hub's one connection to the daemon: the three sessions, its log, and the rules by which
// commands go out and outputs are kept.
//
// It owns no state that others see: what it learns goes into the model, which is published once
// for what came together. Everybody's commands come in here. One io_context, one thread.
#pragma once

#include <array>
#include <boost/asio/awaitable.hpp>
#include <boost/asio/io_context.hpp>
#include <chrono>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "link/Motions.h"
#include "link/Outcome.h"
#include "model/Bus.h"
#include "model/Journal.h"
#include "protocol/Console.h"
#include "protocol/IoCommand.h"

namespace hub::link {

struct LinkOptions {
  std::string host = "127.0.0.1";
  std::array<uint16_t, 3> ports{5010, 5011, 5012};  // by protocol::Port
  std::string log = "/var/log/qelm/qelm.log";       // of the daemon; empty: not followed
  std::chrono::milliseconds cards_every = std::chrono::seconds(30);  // it is asked for its cards
  bool operator==(const LinkOptions&) const = default;
};

// How it gets there. At most one of them.
struct Motion {
  std::optional<std::chrono::milliseconds> pulse;  // a line: on for so long, then back
  std::optional<std::chrono::milliseconds> ramp;   // a position: evenly within this time
};

class Link {
 public:
  // Fire on the io_context's thread, in the order in which the daemon wrote.
  struct Sinks {
    std::function<void(std::string_view line)> report;       // of IO, as it came, without its end
    std::function<void(std::string_view line)> monitored;    // of MON, likewise
    std::function<void(const protocol::WriteBlock&)> asked;  // what an output is to be, to be kept
    std::function<void(uint8_t address, uint8_t block)> forgotten;  // it is to be nothing any more
    model::JournalSink journal;
  };

  Link(boost::asio::io_context& context, LinkOptions options, model::Bus& bus, Sinks sinks);
  ~Link();
  Link(const Link&) = delete;
  Link& operator=(const Link&) = delete;

  // What outputs were asked to be when the hub ran before; before Start.
  void Remember(const std::vector<protocol::WriteBlock>& asked);
  void Start();
  void Stop();  // closes the sessions; everybody who waits gets kAbsent

  // Output channels of one card: one command a block. Answers when all blocks were taken; a ramp
  // and the way back of a pulse begin then. A later target ends an earlier motion, unless it was
  // never written.
  // While the adapter is down, what is accepted is pending in the model.
  boost::asio::awaitable<Outcome> Set(unsigned address, std::vector<Target> targets,
                                      Motion motion = {});

  // A text, a control or a code; also a whole block as a text port gives it.
  boost::asio::awaitable<Outcome> Send(protocol::IoCommand command);

  // A line for the console, and its answer; nothing where no session is, it ended before the
  // answer, or the line is none that can go out (protocol::IsConsoleLine). Lines wait for each
  // other, at most 64 of them; nothing for a further one, too.
  boost::asio::awaitable<std::optional<protocol::Answer>> Ask(std::string line);
  bool IsConsoleFull() const;  // as many lines wait as may

  // For the monitoring system.
  struct Counters {
    uint64_t commands = 0;  // that the daemon has acted on
    uint64_t merged = 0;    // that took the place of an earlier one
    uint64_t refused = 0;   // too fast
    uint64_t reports = 0;   // inputs
    uint64_t sessions = 0;  // that were greeted on all three ports
    uint64_t frames_restored = 0;
  };
  Counters Count() const;

 private:
  struct Parts;
  std::shared_ptr<Parts> parts_;  // kept by whoever still waits
};

}  // namespace hub::link
