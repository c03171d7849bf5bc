#include <fmt/format.h>

#include <utility>
#include <variant>

#include "api/Handlers.h"
#include "api/Refusals.h"

namespace hub::api {

namespace json = boost::json;

namespace {

json::object WhoJson(const access::Caller& caller) {
  json::object who{{"account", nullptr}, {"role", nullptr}};
  if (!caller.account.empty()) who["account"] = caller.account;
  if (caller.role != access::Role::kNone) who["role"] = access::NameOf(caller.role);
  return who;
}

// The name that was tried is not told: people type passwords there.
void NoteFailure(House& house, const access::Caller& caller) {
  model::JournalEntry entry;
  entry.time = house.clock.Now();
  entry.kind = "access";
  entry.text = caller.address.empty() ? "a log-in failed"
                                      : fmt::format("a log-in failed, from {}", caller.address);
  house.store.AddJournal(std::move(entry));
}

}  // namespace

Answer OpenSession(House& house, Request request) {
  auto trying = house.access.LogIn(TextAt(request, "account"), TextAt(request, "password"),
                                   request.caller.address);
  const std::variant<access::Session, access::Refusal, access::Wait> outcome =
      co_await std::move(trying);
  if (const auto* wait = std::get_if<access::Wait>(&outcome)) {
    const auto seconds = static_cast<int>(wait->time.count());
    throw RetryLater(429, fmt::format("too many tries; the next one in {} s", seconds), seconds);
  }
  if (const auto* refusal = std::get_if<access::Refusal>(&outcome)) {
    NoteFailure(house, request.caller);
    throw ProblemOf(*refusal, "account");
  }
  const auto& session = std::get<access::Session>(outcome);
  request.caller = session.caller;
  Note(house, request, "access", "log-in");
  Reply reply = Done(WhoJson(session.caller));
  reply.cookie = session.secret;
  co_return reply;
}

Answer CloseSession(House& house, Request request) {
  if (!request.caller.session.empty()) {
    Note(house, request, "access", "log-out");
    house.access.LogOut(request.caller.session);
  }
  Reply reply = Done(WhoJson({}));
  reply.cookie = "";
  co_return reply;
}

Answer WhoIsIt(House&, Request request) { co_return Done(WhoJson(request.caller)); }

Answer MakeTicket(House& house, Request request) {
  co_return Done(json::object{{"ticket", house.access.MakeTicket(request.caller)}});
}

}  // namespace hub::api
