#include <fmt/format.h>

#include <algorithm>
#include <boost/json/array.hpp>
#include <utility>

#include "api/DaemonLines.h"
#include "api/Handlers.h"

namespace hub::api {

Answer RunConsole(House& house, Request request) {
  RequireDaemon(house);
  std::string line = TextAt(request, "line");
  if (!std::ranges::all_of(line, [](char c) { return c >= ' ' && c <= '~'; }))
    throw DoesNotFit("line", "the console takes printable ASCII only");
  auto running = RunConsoleLine(house, request.caller, line);
  const auto answer = co_await std::move(running);
  if (const auto* problem = std::get_if<Problem>(&answer)) throw Problem(*problem);
  Note(house, request, "command", fmt::format("console: {}", line));
  boost::json::array lines;
  for (const std::string& each : std::get<protocol::Answer>(answer).lines) lines.emplace_back(each);
  co_return Done(boost::json::object{{"lines", std::move(lines)}});
}

}  // namespace hub::api
