#include "link/Sender.h"

#include <algorithm>
#include <boost/asio/co_spawn.hpp>
#include <utility>

#include "model/Fault.h"

namespace hub::link {

namespace asio = boost::asio;
using Clock = std::chrono::steady_clock;

namespace {

// A console line that asks cards stops the daemon for a second a card.
constexpr std::chrono::seconds kLongestSilence{20};

// What the console says of an illegal command can wait behind a long answer.
constexpr std::chrono::milliseconds kRefusalPatience{600};

asio::awaitable<void> AcceptUnlessRefused(Receipt receipt) {
  asio::steady_timer timer(co_await asio::this_coro::executor, kRefusalPatience);
  boost::system::error_code ignored;
  auto token = asio::redirect_error(asio::use_awaitable, ignored);
  co_await timer.async_wait(token);
  receipt->Give(Outcome::kAccepted);
}

asio::awaitable<void> GiveTheSame(Receipt receipt, std::vector<Receipt> followers) {
  const auto outcome = co_await receipt->Wait();
  for (const Receipt& follower : followers) follower->Give(outcome.value_or(Outcome::kAbsent));
}

}  // namespace

Sender::Sender(asio::any_io_executor executor, Sinks sinks)
    : executor_(std::move(executor)),
      sinks_(std::move(sinks)),
      wake_(executor_, SteadyTime::max()) {}

Receipt Sender::Answered(Outcome outcome) const {
  Receipt receipt = Unanswered();
  receipt->Give(outcome);
  return receipt;
}

Receipt Sender::Unanswered() const { return std::make_shared<OneShot<Outcome>>(executor_); }

void Sender::PassOn(Receipt receipt, std::vector<Receipt> followers) {
  if (followers.empty()) return;
  asio::co_spawn(executor_, GiveTheSame(std::move(receipt), std::move(followers)),
                 model::EndOnFault{});
}

bool Sender::HasPlace(unsigned address, size_t count) {
  const bool has_place = outbox_.HasPlace(address, count);
  if (!has_place) ++refused_count_;
  return has_place;
}

Receipt Sender::Offer(const protocol::IoCommand& command, bool is_doubtful) {
  if (!is_open_) return Answered(Outcome::kAbsent);
  const auto ticket = outbox_.Offer(command, Clock::now());
  if (!ticket) {
    ++refused_count_;
    return Answered(Outcome::kTooFast);
  }
  Receipt receipt = Unanswered();
  receipts_.emplace(*ticket, receipt);
  ForgetOldDoubts();
  if (is_doubtful) doubts_.push_back({protocol::Format(command), *ticket, receipt});
  return receipt;
}

void Sender::Open() {
  is_open_ = true;
  last_progress_ = Clock::now();
}

Outbox::Abandoned Sender::Abandon() {
  is_open_ = false;
  is_gate_open_ = false;
  Outbox::Abandoned abandoned = outbox_.Abandon();
  AnswerAll(abandoned.written, Outcome::kLost);
  AnswerAll(abandoned.never_written, Outcome::kAbsent);
  doubts_.clear();
  alone_since_.reset();
  if (drained_) drained_->Give(false);
  return abandoned;
}

void Sender::SetGate(bool is_open) {
  is_gate_open_ = is_open;
  Flush();
}

asio::awaitable<void> Sender::Drain() {
  if (outbox_.BytesUnderWay() == 0) co_return;
  if (!drained_ || drained_->IsGiven()) drained_ = std::make_shared<OneShot<bool>>(executor_);
  const auto drained = drained_;
  co_await drained->Wait();
}

bool Sender::TakeEcho(std::string_view line) {
  const auto received = outbox_.TakeEcho(line);
  if (!received) return false;
  NoteProgress();
  ++command_count_;
  sinks_.acted(received->command);
  for (const Ticket ticket : received->tickets) {
    const auto doubt = std::ranges::find(doubts_, ticket, &Doubt::ticket);
    if (doubt == doubts_.end())
      Answer(ticket, Outcome::kAccepted);
    else
      AcceptLater(*doubt);
  }
  if (outbox_.BytesUnderWay() == 0 && drained_) drained_->Give(true);
  return true;
}

void Sender::NoteProgress() {
  const SteadyTime now = Clock::now();
  if (alone_since_)
    pace_.TakeReceipt(std::chrono::duration_cast<PaceKeeper::Microseconds>(now - *alone_since_));
  alone_since_.reset();
  last_progress_ = now;
}

void Sender::TakeIllegal(std::string_view line) {
  ForgetOldDoubts();
  const auto doubt = std::ranges::find(doubts_, line, &Doubt::line);
  if (doubt == doubts_.end()) return;
  doubt->receipt->Give(Outcome::kIllegal);
  doubts_.erase(doubt);
}

void Sender::ForgetOldDoubts() {
  const SteadyTime now = Clock::now();
  std::erase_if(doubts_, [now](const Doubt& doubt) { return doubt.until < now; });
}

void Sender::Answer(Ticket ticket, Outcome outcome) {
  const auto found = receipts_.extract(ticket);
  if (!found.empty()) found.mapped()->Give(outcome);
}

void Sender::AnswerAll(const std::vector<Outbox::Entry>& entries, Outcome outcome) {
  for (const Outbox::Entry& entry : entries)
    for (const Ticket ticket : entry.tickets) Answer(ticket, outcome);
}

void Sender::AcceptLater(Doubt& doubt) {
  receipts_.erase(doubt.ticket);
  doubt.until = Clock::now() + kRefusalPatience;
  asio::co_spawn(executor_, AcceptUnlessRefused(doubt.receipt), model::EndOnFault{});
}

void Sender::Flush() {
  if (!is_open_ || !is_gate_open_) return;
  const SteadyTime now = Clock::now();
  outbox_.SetRound(pace_.Round(outbox_.CardsWaiting()));
  const bool was_idle = outbox_.BytesUnderWay() == 0;
  const std::string lines = outbox_.TakeDue(now);
  if (!lines.empty()) {
    if (was_idle) alone_since_ = last_progress_ = now;
    sinks_.write(lines);
  }
  SteadyTime wake = outbox_.NextDue().value_or(SteadyTime::max());
  if (outbox_.BytesUnderWay() > 0) wake = std::min(wake, last_progress_ + kLongestSilence);
  if (wake != wake_.expiry()) wake_.expires_at(wake);
}

asio::awaitable<void> Sender::Run() {
  boost::system::error_code cancelled;
  auto token = asio::redirect_error(asio::use_awaitable, cancelled);
  while (true) {
    co_await wake_.async_wait(token);
    const bool is_silent =
        outbox_.BytesUnderWay() > 0 && Clock::now() >= last_progress_ + kLongestSilence;
    if (is_silent) co_return;
    if (!cancelled) Flush();
  }
}

}  // namespace hub::link
