// Methods of the test's own: one that writes, one that is slow, one whose answer is long. They
// take the place of the hub's table.
#include <algorithm>
#include <array>
#include <boost/asio/steady_timer.hpp>
#include <boost/asio/use_awaitable.hpp>

#include "api/Api.h"
#include "api/Shapes.h"

namespace hub::api {

namespace {

using boost::asio::awaitable;

awaitable<Reply> GetThing(House&, Request request) {
  co_return Reply{boost::json::value(std::move(request.parameters)), {}, {}};
}

awaitable<Reply> GetLong(House&, Request request) {
  const auto size = static_cast<size_t>(request.parameters.at("size").as_int64());
  co_return Reply{boost::json::value(std::string(size, 'x')), {}, {}};
}

// All of them answer when there are sixteen, and at length.
awaitable<Reply> GetLate(House& house, Request) {
  constexpr int kAll = 16;
  static int under_way = 0;
  ++under_way;
  boost::asio::steady_timer pause(house.context);
  while (under_way < kAll) {
    pause.expires_after(std::chrono::milliseconds(1));
    co_await pause.async_wait(boost::asio::use_awaitable);
  }
  co_return Reply{boost::json::value(std::string(60'000, 'x')), {}, {}};
}

awaitable<Reply> Who(House&, Request request) {
  boost::json::object who{{"account", request.caller.account},
                          {"role", access::NameOf(request.caller.role)},
                          {"address", request.caller.address}};
  co_return Reply{boost::json::value(std::move(who)), {}, {}};
}

awaitable<Reply> OpenSession(House&, Request) { co_return Reply{nullptr, "secret", {}}; }

awaitable<Reply> CloseSession(House& house, Request request) {
  house.access.LogOut(request.caller.session);
  co_return Reply{nullptr, "", {}};
}

awaitable<Reply> BeBusy(House&, Request) {
  throw RetryLater(503, "the daemon is not there", 7);
  co_return Reply{};
}

awaitable<Reply> Subscribe(House& house, Request request) {
  std::optional<uint64_t> after;
  if (const auto* number = request.parameters.if_contains("after"))
    after = static_cast<uint64_t>(number->as_int64());
  co_return Reply{SnapshotJson(house.bus, house.page, after), {}, house.bus.Sequence()};
}

constexpr Parameter kName{"name", Type::kText, Place::kPath, true, ""};
constexpr Parameter kThing[] = {kName, {"deep", Type::kInteger, Place::kQuery, false, ""}};
constexpr Parameter kPutThing[] = {kName, {"value", Type::kInteger, Place::kBody, true, ""}};
constexpr Parameter kLong[] = {{"size", Type::kInteger, Place::kQuery, true, ""}};
constexpr Parameter kAfter[] = {{"after", Type::kInteger, Place::kBody, false, ""}};

using access::Role;

constexpr std::array<Method, 9> kMethods{{
    {"thing.get", Verb::kGet, "/api/things/{name}", Role::kView, "", kThing, GetThing, "", "", ""},
    {"thing.put", Verb::kPut, "/api/things/{name}", Role::kUse, "", kPutThing, GetThing, "", "",
     ""},
    {"long.get", Verb::kGet, "/api/long", Role::kView, "", kLong, GetLong, "", "", ""},
    {"late.get", Verb::kGet, "/api/late", Role::kView, "", {}, GetLate, "", "", ""},
    {"busy.get", Verb::kGet, "/api/busy", Role::kView, "", {}, BeBusy, "", "", ""},
    {"session.who", Verb::kGet, "/api/session", Role::kNone, "", {}, Who, "", "", ""},
    {"session.open", Verb::kPost, "/api/session", Role::kNone, "", {}, OpenSession, "", "", ""},
    {"session.close", Verb::kDelete, "/api/session", Role::kNone, "", {}, CloseSession, "", "", ""},
    {"live.subscribe", Verb::kGet, "", Role::kView, "", kAfter, Subscribe, "", "", ""},
}};

}  // namespace

std::span<const Method> Methods() { return kMethods; }

const Method* FindMethod(std::string_view name) {
  const auto* found = std::ranges::find(kMethods, name, &Method::name);
  return found == kMethods.end() ? nullptr : found;
}

boost::json::value OpenApiDocument() { return {{"openapi", "3.1.0"}}; }

}  // namespace hub::api
