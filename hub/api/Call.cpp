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

}  // namespace

boost::asio::awaitable<Reply> Call(House& house, const Method& method, Request request) {
  try {
    CheckRole(method, request.caller);
    CheckParameters(method, request.parameters);
    auto handling = method.handler(house, std::move(request));
    Reply reply = co_await std::move(handling);
    co_return reply;
  } catch (const Problem& problem) {
    co_return Reply{problem, {}, {}};
  } catch (const std::exception& fault) {
    co_return Reply{ProblemOf(500, fmt::format("{}: {}", method.name, fault.what())), {}, {}};
  }
}

}  // namespace hub::api
