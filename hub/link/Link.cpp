#include "link/Link.h"

#include <algorithm>
#include <utility>

#include "link/LinkParts.h"

namespace hub::link {

namespace asio = boost::asio;
using protocol::IoCommand;
using protocol::WriteBlock;

namespace {

constexpr std::string_view kForcedDiscovery = "FORCEDISCOVER";

// Of several the worst counts.
asio::awaitable<Outcome> WaitForAll(std::vector<Receipt> receipts) {
  Outcome worst = Outcome::kAccepted;
  for (const Receipt& receipt : receipts) {
    const auto outcome = co_await receipt->Wait();
    worst = std::max(worst, outcome.value_or(Outcome::kAbsent));
  }
  co_return worst;
}

// A stream for a card of another kind. A block is never refused, whatever card is there.
bool IsDoubtful(const IoCommand& command, const model::Card* card) {
  const model::Kind kind = card == nullptr ? model::Kind::kUnknown : card->kind;
  if (std::holds_alternative<WriteBlock>(command)) return false;
  const bool is_infrared = std::holds_alternative<protocol::SendInfrared>(command);
  return kind != (is_infrared ? model::Kind::kInfrared : model::Kind::kLcd);
}

}  // namespace

Link::Link(asio::io_context& context, LinkOptions options, model::Bus& bus, Sinks sinks)
    : parts_(std::make_shared<Parts>(context, std::move(options), bus, std::move(sinks))) {}

Link::~Link() { Stop(); }

void Link::Remember(const std::vector<WriteBlock>& asked) { parts_->outputs.Remember(asked); }

void Link::Start() { parts_->Start(); }

void Link::Stop() { parts_->Stop(); }

asio::awaitable<Outcome> Link::Set(unsigned address, std::vector<Target> targets, Motion motion) {
  const auto parts = parts_;
  if (!parts->is_up) co_return Outcome::kAbsent;
  const model::Card* card = parts->bus.At(address);
  if (card == nullptr || card->Row().direction != model::Direction::kOutput)
    co_return Outcome::kIllegal;
  const Parts::Moves moves = parts->Plan(address, targets, motion);
  std::vector<Receipt> receipts = parts->Write(address, targets);
  parts->sender.Flush();
  parts->bus.Publish();
  const Outcome outcome = co_await WaitForAll(std::move(receipts));
  parts->Settle(moves, outcome);
  co_return outcome;
}

asio::awaitable<Outcome> Link::Send(IoCommand command) {
  const auto parts = parts_;
  if (!parts->is_up) co_return Outcome::kAbsent;
  const std::vector<IoCommand> pieces = protocol::Pieces(command);
  if (pieces.empty()) co_return Outcome::kIllegal;
  const unsigned address = protocol::AddressOf(command);
  const model::Card* card = parts->bus.At(address);
  const auto* block = std::get_if<WriteBlock>(&command);
  if (block == nullptr && !parts->sender.HasPlace(address, pieces.size()))
    co_return Outcome::kTooFast;
  const bool is_kept_back = block != nullptr && parts->outputs.IsForOutput(*block);
  if (!is_kept_back && parts->IsTooMuchWithoutAdapter(address, pieces.size()))
    co_return Outcome::kTooFast;
  std::vector<Receipt> receipts;
  for (const IoCommand& piece : pieces) {
    if (const auto* level = std::get_if<WriteBlock>(&piece))
      receipts.push_back(parts->outputs.Write(*level));
    else
      receipts.push_back(parts->sender.Offer(piece, IsDoubtful(piece, card)));
  }
  parts->sender.Flush();
  parts->bus.Publish();
  const Outcome outcome = co_await WaitForAll(std::move(receipts));
  co_return outcome;
}

asio::awaitable<std::optional<protocol::Answer>> Link::Ask(std::string line) {
  const auto parts = parts_;
  const bool can_go = !parts->console.IsFull() && protocol::IsConsoleLine(line);
  if (!parts->is_up || !can_go) co_return std::nullopt;
  const bool is_forced = line == kForcedDiscovery;
  if (is_forced) co_await parts->survey.BeginForced();
  if (!parts->is_up) co_return std::nullopt;  // lost meanwhile
  auto answer = co_await parts->console.Ask(std::move(line));
  if (parts->is_stopped) co_return answer;
  if (answer) parts->survey.Understand(answer->lines);
  if (is_forced) parts->survey.EndForced(answer.has_value());
  co_return answer;
}

bool Link::IsConsoleFull() const { return parts_->console.IsFull(); }

Link::Counters Link::Count() const {
  return {.commands = parts_->sender.CommandCount(),
          .merged = parts_->sender.MergedCount(),
          .refused = parts_->sender.RefusedCount(),
          .reports = parts_->report_count,
          .sessions = parts_->session_count,
          .frames_restored = parts_->outputs.RestoredCount()};
}

}  // namespace hub::link
