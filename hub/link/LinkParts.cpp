#include "link/LinkParts.h"

#include <boost/asio/co_spawn.hpp>
#include <boost/asio/experimental/awaitable_operators.hpp>
#include <boost/asio/redirect_error.hpp>
#include <boost/asio/use_awaitable.hpp>
#include <utility>

#include "model/Fault.h"
#include "protocol/InputReport.h"

namespace hub::link {

namespace asio = boost::asio;
using model::DaemonState;
using protocol::Port;
using protocol::WriteBlock;

namespace {

model::Time Now() { return std::chrono::system_clock::now(); }

}  // namespace

Link::Parts::Parts(asio::io_context& context, LinkOptions options, model::Bus& the_bus,
                   Sinks the_sinks)
    : executor(context.get_executor()),
      bus(the_bus),
      sinks(std::move(the_sinks)),
      sessions(
          executor, options.host, options.ports,
          {.lines = [this](Port port,
                           std::vector<std::string> lines) { TakeLines(port, std::move(lines)); },
           .waiting = [this](Port port) { SetDaemon(DaemonState::kWaiting, port); }}),
      console(executor,
              {.write = [this](std::string_view line) { sessions.Write(Port::kCae, line); },
               .illegal = [this](const std::string& command) { TakeIllegal(command); },
               .ready = [this] { has_prompt_ = true; }}),
      sender(executor,
             {.write = [this](std::string_view lines) { sessions.Write(Port::kIo, lines); },
              .acted =
                  [this](const protocol::IoCommand& command) {
                    outputs.TakeReceipt(command, Now());
                  }}),
      outputs(bus, sender,
              {.asked = [this](const WriteBlock& command) { TellAsked(command); },
               .forgotten =
                   [this](uint8_t address, uint8_t block) {
                     told_.erase({address, block});
                     sinks.forgotten(address, block);
                   },
               .restored =
                   [this](unsigned address, size_t) {
                     std::string text = "outputs restored on card ";
                     text += protocol::HexDigit(address);
                     Tell("card", std::move(text));
                   }}),
      survey(
          executor, options.cards_every, bus, console, sender, outputs, log_state,
          [this](std::string kind, std::string text) { Tell(std::move(kind), std::move(text)); }),
      motions(executor,
              [this](unsigned address, Target target) {
                Write(address, {target});
                outputs.Insist(address, model::BlockOf(bus.At(address)->Row(), target.number));
                sender.Flush();
                bus.Publish();
              }),
      log(executor, options.log,
          {.old_line = [this](const protocol::LogLine& line) { log_state.TakeOld(line); },
           .old_read = [this] { survey.TakeOldLog(log.AgeOfLastLine()); },
           .line = [this](const protocol::LogLine& line) { TakeLogLine(line); },
           .caught_up = [this] { bus.Publish(); }}),
      pause_(executor) {}

void Link::Parts::Start() {
  log.Look();
  asio::co_spawn(executor, FollowLog(shared_from_this()), model::EndOnFault{});
  asio::co_spawn(executor, Connect(shared_from_this()), model::EndOnFault{});
}

void Link::Parts::Stop() {
  if (std::exchange(is_stopped, true)) return;
  motions.EndAll();
  log.Stop();
  pause_.cancel();
  sessions.Close();
  Lose();
}

asio::awaitable<void> Link::Parts::FollowLog(std::shared_ptr<Parts> self) {
  co_await self->log.Run();
}

asio::awaitable<void> Link::Parts::Connect(std::shared_ptr<Parts> self) {
  boost::system::error_code ignored;
  auto token = asio::redirect_error(asio::use_awaitable, ignored);
  while (!self->is_stopped) {
    self->log.Look();
    self->log_lines_ = 0;
    co_await self->sessions.Run(self->Converse());
    if (self->is_stopped) co_return;
    self->Lose();
    self->pause_.expires_after(self->backoff_.Next());
    co_await self->pause_.async_wait(token);
  }
}

asio::awaitable<void> Link::Parts::Converse() {
  using namespace asio::experimental::awaitable_operators;
  auto any = sender.Run() || console.Run() || survey.Run();
  co_await std::move(any);
}

void Link::Parts::TakeLines(Port port, std::vector<std::string> lines) {
  if (is_stopped) return;
  for (std::string& line : lines) {
    if (line.empty()) continue;
    if (port == Port::kCae)
      console.Take(std::move(line));
    else if (line == protocol::TextOf(port).greeting)
      continue;
    else if (port == Port::kIo)
      TakeReport(line);
    else
      TakeMonitored(line);
  }
  if (!is_up) BeginIfGreeted();
  sender.Flush();
  bus.Publish();
}

void Link::Parts::TakeReport(const std::string& line) {
  const auto report = protocol::ParseInputReport(line);
  if (!report || !is_up) return;
  ++report_count;
  bus.TakeInput(*report, Now());
  sinks.report(line);
}

void Link::Parts::TakeMonitored(const std::string& line) {
  if (!is_up) return;
  sender.TakeEcho(line);
  sinks.monitored(line);
}

void Link::Parts::TakeIllegal(const std::string& command) {
  if (!is_up) return;
  sender.TakeIllegal(command);
  Tell("command", "the daemon refuses " + command);
}

void Link::Parts::TakeLogLine(const protocol::LogLine& line) {
  if (is_stopped) return;
  ++log_lines_;
  // Before its own first session, whoever leaves the IO port was the hub before this one.
  if (session_count == 0)
    log_state.TakeOld(line);
  else
    log_state.Take(line);
  survey.TakeLogLine(line);
  if (line.event == protocol::LogEvent::kAdapterFound) sent_without_adapter_.fill(0);
  if (!line.is_error || line.text == last_error_) return;
  last_error_ = line.text;
  Tell("daemon", "its log says: " + line.text);
}

void Link::Parts::BeginIfGreeted() {
  if (!has_prompt_ || !sessions.AreGreeted()) return;
  is_up = true;
  ++session_count;
  backoff_.Reset();
  SetDaemon(DaemonState::kUp);
  sender.Open();
  // The daemon logs that it greets: a log without that is another's, or is not written.
  log.Look();
  survey.Begin(log.IsOpen() && log_lines_ > 0);
}

void Link::Parts::Lose() {
  has_prompt_ = false;
  if (std::exchange(is_up, false)) Tell("daemon", "the daemon is gone");
  outputs.Lose(sender.Abandon());
  survey.Lose();
  console.Abandon();
  if (is_stopped) return;
  SetDaemon(DaemonState::kAbsent);
  bus.Publish();
}

void Link::Parts::SetDaemon(DaemonState state, std::optional<Port> waiting_for) {
  model::Daemon daemon = bus.DaemonNow();
  std::optional<std::string> word;
  if (waiting_for) word = protocol::TextOf(*waiting_for).word;
  if (daemon.state == state && daemon.waiting_for == word) return;
  const auto since = daemon.state == state ? daemon.since : Now();
  daemon = {.state = state, .version = {}, .since = since, .waiting_for = word};
  bus.SetDaemon(daemon);
  if (word) Tell("daemon", "another program holds port " + *word);
  bus.Publish();
}

Link::Parts::Moves Link::Parts::Plan(unsigned address, std::vector<Target>& targets,
                                     const Motion& motion) {
  Moves moves{
      .address = address, .is_pulse = motion.pulse.has_value(), .planned = {}, .halted = {}};
  for (Target& target : targets) {
    if (auto halted = motions.Halt(address, target.number)) moves.halted.push_back(halted);
    if (!motion.pulse && !motion.ramp) continue;
    const unsigned block = model::BlockOf(bus.At(address)->Row(), target.number);
    Motions::Path path{outputs.Asked(address, block), target.raw};
    if (moves.is_pulse) path = {target.raw, static_cast<uint8_t>(target.raw ^ 1U)};
    const auto time = moves.is_pulse ? *motion.pulse : *motion.ramp;
    const int steps = moves.is_pulse ? 1 : Motions::StepsOf(path, time);
    moves.planned.push_back(motions.Plan(address, target.number, path, time, steps));
    target.raw = path.from;
  }
  return moves;
}

void Link::Parts::Settle(const Moves& moves, Outcome outcome) {
  if (is_stopped || (moves.planned.empty() && moves.halted.empty())) return;
  const bool has_to_go_back = moves.is_pulse && outcome == Outcome::kLost;
  for (const Motions::Moving& planned : moves.planned) {
    if (outcome == Outcome::kAccepted || has_to_go_back)
      motions.Begin(planned);
    else
      motions.End(planned);
  }
  if (outcome == Outcome::kAbsent)
    for (const Motions::Moving& halted : moves.halted) motions.GoOn(halted);
  outputs.TellAsked(moves.address);
}

std::vector<Receipt> Link::Parts::Write(unsigned address, const std::vector<Target>& targets) {
  const model::KindRow& row = bus.At(address)->Row();
  std::map<uint8_t, uint8_t> blocks;
  for (const Target& target : targets) {
    const auto block = static_cast<uint8_t>(model::BlockOf(row, target.number));
    uint8_t& value = blocks.try_emplace(block, outputs.Asked(address, block)).first->second;
    value = model::WithChannel(row, value, target.number, target.raw);
  }
  std::vector<Receipt> receipts;
  for (const auto& [block, value] : blocks)
    receipts.push_back(outputs.Write({static_cast<uint8_t>(address), block, value}));
  return receipts;
}

// Told as it will be when all that moves has arrived.
void Link::Parts::TellAsked(const WriteBlock& command) {
  const model::Card* card = bus.At(command.address);
  WriteBlock kept = command;
  for (unsigned number = 0; card != nullptr && number < card->channels.size(); ++number) {
    if (model::BlockOf(card->Row(), number) != command.block) continue;
    const auto goal = motions.Goal(command.address, number);
    if (goal) kept.value = model::WithChannel(card->Row(), kept.value, number, *goal);
  }
  const auto [told, is_new] = told_.try_emplace({kept.address, kept.block}, kept.value);
  if (!is_new && told->second == kept.value) return;
  told->second = kept.value;
  sinks.asked(kept);
}

bool Link::Parts::IsTooMuchWithoutAdapter(unsigned address, size_t count) {
  if (bus.AdapterNow().state != model::AdapterState::kDown) return false;
  size_t& sent = sent_without_adapter_[address];
  if (sent + count > Outbox::kMostWaiting) return true;
  sent += count;
  return false;
}

void Link::Parts::Tell(std::string kind, std::string text) const {
  if (is_stopped) return;
  sinks.journal(
      {.sequence = 0, .time = Now(), .kind = std::move(kind), .text = std::move(text), .by = {}});
}

}  // namespace hub::link
