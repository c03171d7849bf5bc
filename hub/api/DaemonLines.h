// The daemon's own two languages, a line at a time, for the text ports and the page's console.
//
// A role is asked for first: `admin` for the console, `use` for commands. What would end the
// daemon, or the hub's session with it, never leaves: EXIT is refused, a text is cut where its row
// ends.
#pragma once

#include <boost/asio/awaitable.hpp>
#include <optional>
#include <string>
#include <variant>

#include "access/Role.h"
#include "api/Api.h"
#include "api/Problem.h"
#include "protocol/Console.h"

namespace hub::api {

// The answer without its prompt. 422 for a line that the console cannot take.
boost::asio::awaitable<std::variant<protocol::Answer, Problem>> RunConsoleLine(
    House& house, access::Caller caller, std::string line);

// Nothing: the daemon has acted on it. 422 for a line that is no command.
boost::asio::awaitable<std::optional<Problem>> RunCommandLine(House& house, access::Caller caller,
                                                              std::string line);

}  // namespace hub::api
