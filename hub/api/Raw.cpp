#include "api/Raw.h"

#include <algorithm>
#include <utility>

#include "model/Glass.h"
#include "protocol/IoCommand.h"

namespace hub::api {

namespace {

namespace asio = boost::asio;
using access::Role;

constexpr std::string_view kExit = "EXIT";

// One read of the daemon, less the line's end.
constexpr size_t kLongestLine = protocol::kMostBytesUnderWay - protocol::kLineEnd.size();

Problem Refuse(int status, std::string title, std::string detail) {
  return {status, std::move(title), std::move(detail), "line", std::nullopt};
}

std::optional<Problem> CheckRole(const access::Caller& caller, Role role) {
  if (caller.role >= role) return std::nullopt;
  return Refuse(403, "not allowed", "needs the role " + std::string(NameOf(role)));
}

bool HasControlCharacters(std::string_view line) {
  return std::ranges::any_of(line, [](char c) { return c == '\r' || c == '\n' || c == '\0'; });
}

std::optional<Problem> CheckLine(std::string_view line) {
  if (HasControlCharacters(line))
    return Refuse(422, "does not fit", "a line of the daemon holds no CR, LF and NUL");
  if (line.size() > kLongestLine)
    return Refuse(422, "does not fit",
                  "a line of " + std::to_string(line.size()) + " characters; the daemon takes " +
                      std::to_string(kLongestLine));
  return std::nullopt;
}

// The commands that show the text, none of which is too long for the daemon. What does not fit
// the row is cut; a display that is not known has room for all.
std::vector<protocol::IoCommand> Pieces(const model::Bus& bus, protocol::WriteText write) {
  const model::Card* const card = bus.At(write.address);
  if (card != nullptr && card->glass)
    write.text.resize(std::min<size_t>(write.text.size(), card->glass->Room(write.column, write.row)));
  std::vector<protocol::IoCommand> pieces;
  do {
    const size_t count = std::min(write.text.size(), protocol::kMostTextCharacters);
    pieces.emplace_back(
        protocol::WriteText{write.address, write.column, write.row, write.text.substr(0, count)});
    write.text.erase(0, count);
    write.column = static_cast<uint8_t>(write.column + count);
  } while (!write.text.empty());
  return pieces;
}

std::vector<protocol::IoCommand> CommandsOf(const model::Bus& bus, protocol::IoCommand command) {
  if (auto* const write = std::get_if<protocol::WriteText>(&command)) return Pieces(bus, *write);
  return {std::move(command)};
}

std::optional<Problem> ProblemOf(link::Outcome outcome) {
  switch (outcome) {
    case link::Outcome::kAccepted:
      return std::nullopt;
    case link::Outcome::kIllegal:
      return Refuse(422, "does not fit", "the daemon refused the command");
    case link::Outcome::kTooFast:
      return Refuse(429, "too fast", "more commands wait than the card takes");
    case link::Outcome::kAbsent:
      break;
  }
  return Refuse(503, "the daemon is not there", "the daemon is not there");
}

}  // namespace

asio::awaitable<std::variant<protocol::Answer, Problem>> RunConsole(House& house,
                                                                    access::Caller caller,
                                                                    std::string line) {
  if (auto problem = CheckRole(caller, Role::kAdmin)) co_return *std::move(problem);
  if (auto problem = CheckLine(line)) co_return *std::move(problem);
  if (line == kExit)
    co_return Refuse(422, "does not fit", "EXIT would end the session of everybody");
  std::optional<protocol::Answer> answer = co_await house.link.Ask(std::move(line));
  if (!answer) co_return *ProblemOf(link::Outcome::kAbsent);
  co_return *std::move(answer);
}

asio::awaitable<std::optional<Problem>> RunIo(House& house, access::Caller caller,
                                              std::string line) {
  if (auto problem = CheckRole(caller, Role::kUse)) co_return problem;
  if (auto problem = CheckLine(line)) co_return problem;
  std::optional<protocol::IoCommand> command = protocol::ParseIoCommand(line);
  if (!command) co_return ProblemOf(link::Outcome::kIllegal);
  const auto* const code = std::get_if<protocol::SendInfrared>(&*command);
  if (code != nullptr && code->bytes.size() > protocol::kMostInfraredBytes)
    co_return ProblemOf(link::Outcome::kIllegal);
  for (protocol::IoCommand& each : CommandsOf(house.bus, *std::move(command))) {
    const link::Outcome outcome = co_await house.link.Send(std::move(each));
    if (outcome != link::Outcome::kAccepted) co_return ProblemOf(outcome);
  }
  co_return std::nullopt;
}

}  // namespace hub::api
