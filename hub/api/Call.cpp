#include <fmt/format.h>

#include <exception>
#include <utility>

#include "api/Api.h"
#include "api/Parameters.h"

namespace hub::api {

namespace {

void CheckRole(const Method& method, const access::Caller& caller) {
  if (caller.role >= method.role) return;
  if (caller.role == access::Role::kNone) throw ProblemOf(401, "log in first");
  throw ProblemOf(403, fmt::format("{} needs the role {}; this login has {}", method.name,
                                   access::NameOf(method.role), access::NameOf(caller.role)));
}

boost::asio::awaitable<Reply> Try(House& house, const Method& method, Request request) {
  try {
    CheckRole(method, request.caller);
    CheckParameters(method, request.parameters);
    auto handling = method.handler(house, std::move(request));
    Reply reply = co_await std::move(handling);
    co_return reply;
  } catch (const Problem& problem) {
    co_return Reply{problem, {}, {}};
  } catch (const std::exception& fault) {
    Problem problem = ProblemOf(fault);
    problem.detail = fmt::format("{}: {}", method.name, problem.detail);
    co_return Reply{std::move(problem), {}, {}};
  }
}

}  // namespace

// What needs the role `use` is a command for an output, and is counted.
boost::asio::awaitable<Reply> Call(House& house, const Method& method, Request request) {
  const access::Door door = request.caller.door;
  const model::SteadyTime begin = house.clock.Steady();
  auto trying = Try(house, method, std::move(request));
  Reply reply = co_await std::move(trying);
  if (method.role == access::Role::kUse)
    house.traffic.Count(door, std::get_if<Problem>(&reply.result), house.clock.Steady() - begin);
  co_return reply;
}

}  // namespace hub::api
