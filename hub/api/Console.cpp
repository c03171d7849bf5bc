#include <fmt/format.h>

#include <algorithm>
#include <boost/json/array.hpp>
#include <utility>

#include "api/Handlers.h"

namespace hub::api {

namespace {

// The daemon ends the session at this word, and that is the hub's own.
constexpr std::string_view kExit = "EXIT";

}  // namespace

Answer RunConsole(House& house, Request request) {
  RequireDaemon(house);
  std::string line = TextAt(request, "line");
  if (!std::ranges::all_of(line, [](char c) { return c >= ' ' && c <= '~'; }))
    throw DoesNotFit("line", "the console takes printable ASCII only");
  if (line == kExit) throw DoesNotFit("line", "EXIT would end the hub's own session");
  auto asking = house.link.Ask(line);
  const std::optional<protocol::Lines> answer = co_await std::move(asking);
  if (!answer)
    throw RetryLater(503, "the daemon went away before it had answered", kRetryDaemonSeconds);
  Note(house, request, "command", fmt::format("console: {}", line));
  boost::json::array lines;
  for (const std::string& each : *answer) lines.emplace_back(each);
  co_return Done(boost::json::object{{"lines", std::move(lines)}});
}

}  // namespace hub::api
