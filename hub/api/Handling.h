// What handlers have in common: parameters, cards and channels by name, outcomes of commands.
// All of it throws a Problem where something is wrong.
#pragma once

#include <boost/asio/awaitable.hpp>
#include <boost/json/object.hpp>
#include <optional>
#include <string>
#include <string_view>

#include "api/Api.h"
#include "api/Shapes.h"

namespace hub::api {

using Answer = boost::asio::awaitable<Reply>;

// It comes and goes with its service, or with another program that leaves its port.
inline constexpr int kRetryDaemonSeconds = 5;

Reply Done(boost::json::value result);

// Parameters that were checked: of a required one, the value is there.
std::string TextAt(const Request& request, std::string_view name);
std::optional<std::string> MaybeText(const Request& request, std::string_view name);
std::optional<int64_t> MaybeInteger(const Request& request, std::string_view name);
int64_t IntegerAt(const Request& request, std::string_view name);
bool FlagAt(const Request& request, std::string_view name);  // false where it is not given
boost::json::object ObjectAt(const Request& request, std::string_view name);  // or empty

// Nothing waits for a daemon that is not there.
void RequireDaemon(const House& house);

// Nor behind 64 others: too fast.
std::optional<Problem> CheckConsole(const House& house);

// A card that is or was there; by the parameter "address".
const model::Card& RequireCard(const House& house, const Request& request);

// The same, for a command: the card is there, and of this kind.
const model::Card& RequireKind(const House& house, const Request& request, model::Kind kind);

// By a text "5.0", of a card that is or was there.
struct ChannelAt {
  const model::Card& card;
  unsigned number;
};
ChannelAt RequireChannel(const House& house, const std::string& id);

void RequirePresent(const model::Card& card);

// What has become of a command.
void RequireAccepted(link::Outcome outcome, unsigned address);

// A line for the console, and its answer. An answer with an error is a problem too.
boost::asio::awaitable<protocol::Lines> AskDaemon(House& house, std::string line);

// Reads anew which inputs are polled, for the answer to whoever has changed it.
boost::asio::awaitable<void> RefreshPolling(House& house);

// For the journal: who is asking, and what was done.
void Note(House& house, const Request& request, std::string_view kind, std::string text);

}  // namespace hub::api
