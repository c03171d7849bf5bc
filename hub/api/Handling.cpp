#include "api/Handling.h"

#include <fmt/format.h>

#include <utility>

namespace hub::api {

namespace json = boost::json;

namespace {

constexpr int kRetryTooFast = 1;  // seconds; a queue is hardly longer

const json::value* Find(const Request& request, std::string_view name) {
  return request.parameters.if_contains(name);
}

}  // namespace

Reply Done(json::value result) { return {std::move(result), std::nullopt, std::nullopt}; }

std::string TextAt(const Request& request, std::string_view name) {
  return MaybeText(request, name).value_or("");
}

std::optional<std::string> MaybeText(const Request& request, std::string_view name) {
  const json::value* const value = Find(request, name);
  if (value == nullptr) return std::nullopt;
  return std::string(value->get_string());
}

std::optional<int64_t> MaybeInteger(const Request& request, std::string_view name) {
  const json::value* const value = Find(request, name);
  if (value == nullptr) return std::nullopt;
  return value->get_int64();
}

int64_t IntegerAt(const Request& request, std::string_view name) {
  return MaybeInteger(request, name).value_or(0);
}

bool FlagAt(const Request& request, std::string_view name) {
  const json::value* const value = Find(request, name);
  return value != nullptr && value->get_bool();
}

json::object ObjectAt(const Request& request, std::string_view name) {
  const json::value* const value = Find(request, name);
  return value == nullptr ? json::object() : value->get_object();
}

void RequireDaemon(const House& house) {
  const model::Daemon& daemon = house.bus.DaemonNow();
  if (daemon.state == model::DaemonState::kUp) return;
  if (daemon.state == model::DaemonState::kAbsent)
    throw RetryLater(503, "the daemon is not there; nothing was sent", kRetryDaemonSeconds);
  throw RetryLater(503,
                   fmt::format("another program holds the daemon's port {}; nothing was sent",
                               daemon.waiting_for.value_or("")),
                   kRetryDaemonSeconds);
}

const model::Card& RequireCard(const House& house, const Request& request) {
  const std::string text = TextAt(request, "address");
  const auto address = ParseAddress(text);
  if (!address)
    throw ProblemOf(404, fmt::format("no place {}; they are 0 to 9 and A to F", text), "address");
  const model::Card* const card = house.bus.At(*address);
  if (card == nullptr) throw ProblemOf(404, fmt::format("no card at {}", text), "address");
  return *card;
}

void RequirePresent(const model::Card& card) {
  if (card.state == model::CardState::kAbsent)
    throw ProblemOf(404, fmt::format("no card at {} any more", AddressText(card.address)),
                    "address");
}

const model::Card& RequireKind(const House& house, const Request& request, model::Kind kind) {
  RequireDaemon(house);
  const model::Card& card = RequireCard(house, request);
  RequirePresent(card);
  if (card.kind != kind)
    throw ProblemOf(409,
                    fmt::format("card {} is of the kind {}; this is for {}",
                                AddressText(card.address), card.Row().word, RowOf(kind).word),
                    "address");
  return card;
}

ChannelAt RequireChannel(const House& house, const std::string& text) {
  const auto id = ParseChannel(text);
  if (!id) throw ProblemOf(404, fmt::format("no channel {}; they are as 5.0", text), "id");
  const model::Card* const card = house.bus.At(id->address);
  if (card == nullptr)
    throw ProblemOf(404, fmt::format("no card at {}", AddressText(id->address)), "id");
  if (id->number >= card->channels.size())
    throw ProblemOf(404,
                    fmt::format("card {} is of the kind {}, which has {} channels",
                                AddressText(id->address), card->Row().word, card->channels.size()),
                    "id");
  return {*card, id->number};
}

void RequireAccepted(link::Outcome outcome, unsigned address) {
  switch (outcome) {
    case link::Outcome::kAccepted:
      return;
    case link::Outcome::kIllegal:
      throw ProblemOf(409, fmt::format("the daemon refuses this for card {}: it has no card "
                                       "there, or one of another kind",
                                       AddressText(address)));
    case link::Outcome::kTooFast:
      throw RetryLater(429, fmt::format("card {} has 64 commands waiting", AddressText(address)),
                       kRetryTooFast);
    case link::Outcome::kAbsent:
      throw RetryLater(503, "the daemon went away before it had acted on this",
                       kRetryDaemonSeconds);
    case link::Outcome::kLost:
      throw RetryLater(503, "the daemon went away; nobody knows whether it had acted on this",
                       kRetryDaemonSeconds);
  }
}

std::optional<Problem> CheckConsole(const House& house) {
  if (!house.link.IsConsoleFull()) return std::nullopt;
  return RetryLater(429, "the daemon's console has 64 lines waiting", kRetryTooFast);
}

boost::asio::awaitable<protocol::Lines> AskDaemon(House& house, std::string line) {
  RequireDaemon(house);
  if (const auto problem = CheckConsole(house)) throw Problem(*problem);
  auto asking = house.link.Ask(line);
  std::optional<protocol::Answer> answer = co_await std::move(asking);
  if (!answer)
    throw RetryLater(503, fmt::format("the daemon did not answer {}", line), kRetryDaemonSeconds);
  if (const auto error = protocol::ParseError(answer->lines))
    throw RetryLater(503, fmt::format("the daemon's answer to {}: {}", line, *error),
                     kRetryDaemonSeconds);
  co_return std::move(answer->lines);
}

boost::asio::awaitable<void> RefreshPolling(House& house) {
  auto asking = AskDaemon(house, "POLLSTATE");
  const protocol::Lines lines = co_await std::move(asking);
  const auto polling = protocol::ParsePolling(lines);
  if (!polling) co_return;
  house.bus.SetPolling(*polling);
  house.bus.Publish();
}

void Note(House& house, const Request& request, std::string_view kind, std::string text) {
  model::JournalEntry entry;
  entry.time = house.clock.Now();
  entry.kind = kind;
  entry.text = std::move(text);
  entry.by = request.caller.account.empty() ? "local" : request.caller.account;
  house.store.AddJournal(std::move(entry));
}

}  // namespace hub::api
