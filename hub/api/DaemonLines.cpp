#include "api/DaemonLines.h"

#include <fmt/format.h>

#include <algorithm>
#include <utility>

#include "api/Handling.h"
#include "model/Glass.h"
#include "protocol/IoCommand.h"

namespace hub::api {

namespace {

namespace asio = boost::asio;
using access::Role;

// One read of the daemon, less the line's end.
constexpr size_t kLongestLine = protocol::kMostBytesUnderWay - protocol::kLineEnd.size();

std::optional<Problem> CheckRole(const access::Caller& caller, Role role) {
  if (caller.role >= role) return std::nullopt;
  return ProblemOf(403, fmt::format("a caller of the role {} is needed", NameOf(role)));
}

std::optional<Problem> CheckLine(std::string_view line) {
  if (protocol::IsConsoleLine(line)) return std::nullopt;
  return DoesNotFit("line", fmt::format("a line for the daemon is one line of at most {} "
                                        "characters, and not EXIT",
                                        kLongestLine));
}

// What does not fit its row is cut; a display that is not known has room for all.
void CutText(const model::Bus& bus, protocol::IoCommand& command) {
  auto* const write = std::get_if<protocol::WriteText>(&command);
  const model::Card* const card = write == nullptr ? nullptr : bus.At(write->address);
  if (card == nullptr || !card->glass) return;
  const size_t room = card->glass->Room(write->column, write->row);
  write->text.resize(std::min(write->text.size(), room));
}

}  // namespace

asio::awaitable<std::variant<protocol::Answer, Problem>> RunConsoleLine(House& house,
                                                                        access::Caller caller,
                                                                        std::string line) {
  if (auto problem = CheckRole(caller, Role::kAdmin)) co_return *std::move(problem);
  if (auto problem = CheckLine(line)) co_return *std::move(problem);
  if (auto problem = CheckConsole(house)) co_return *std::move(problem);
  auto asking = house.link.Ask(std::move(line));
  std::optional<protocol::Answer> answer = co_await std::move(asking);
  if (!answer) co_return RetryLater(503, "the daemon is not there", kRetryDaemonSeconds);
  co_return *std::move(answer);
}

asio::awaitable<std::optional<Problem>> RunCommandLine(House& house, access::Caller caller,
                                                       std::string line) {
  if (auto problem = CheckRole(caller, Role::kUse)) co_return problem;
  if (auto problem = CheckLine(line)) co_return problem;
  std::optional<protocol::IoCommand> command = protocol::ParseIoCommand(line);
  if (!command) co_return DoesNotFit("line", "no command of the daemon");
  CutText(house.bus, *command);
  auto sending = house.link.Send(*std::move(command));
  const link::Outcome outcome = co_await std::move(sending);
  switch (outcome) {
    case link::Outcome::kAccepted:
      break;
    case link::Outcome::kIllegal:
      co_return DoesNotFit("line", "the daemon refused the command");
    case link::Outcome::kTooFast:
      co_return RetryLater(429, "more commands wait than the card takes", 1);
    case link::Outcome::kAbsent:
    case link::Outcome::kLost:
      co_return RetryLater(503, "the daemon is not there", kRetryDaemonSeconds);
  }
  co_return std::nullopt;
}

}  // namespace hub::api
