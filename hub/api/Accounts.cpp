#include <fmt/format.h>

#include <boost/json/array.hpp>
#include <utility>

#include "api/Handlers.h"
#include "api/Refusals.h"

namespace hub::api {

namespace json = boost::json;

namespace {

Reply AccountsReply(const House& house) {
  json::array accounts;
  for (const access::Account& account : house.access.Accounts())
    accounts.push_back(
        json::object{{"account", account.name}, {"role", access::NameOf(account.role)}});
  return Done(json::object{{"accounts", std::move(accounts)}});
}

std::optional<access::Role> MaybeRole(const Request& request) {
  const auto word = MaybeText(request, "role");
  return word ? access::ParseRole(*word) : std::nullopt;
}

void RequireDone(const std::optional<access::Refusal>& refusal) {
  if (refusal) throw ProblemOf(*refusal, "account");
}

}  // namespace

Answer ListAccounts(House& house, Request) { co_return AccountsReply(house); }

Answer AddAccount(House& house, Request request) {
  const std::string name = TextAt(request, "account");
  const access::Role role = MaybeRole(request).value_or(access::Role::kView);
  auto adding = house.access.AddAccount(name, TextAt(request, "password"), role);
  const std::optional<access::Refusal> refusal = co_await std::move(adding);
  RequireDone(refusal);
  Note(house, request, "access",
       fmt::format("account {} added, role {}", name, access::NameOf(role)));
  co_return AccountsReply(house);
}

Answer ChangeAccount(House& house, Request request) {
  const std::string name = TextAt(request, "account");
  const auto password = MaybeText(request, "password");
  const auto role = MaybeRole(request);
  if (!password && !role) throw DoesNotFit("", "a password or a role is to be given");
  auto changing = house.access.ChangeAccount(name, password, role);
  const std::optional<access::Refusal> refusal = co_await std::move(changing);
  RequireDone(refusal);
  std::string note = fmt::format("account {}: ", name);
  if (password) note += "new password";
  if (password && role) note += ", ";
  if (role) note += fmt::format("role {}", access::NameOf(*role));
  Note(house, request, "access", std::move(note));
  co_return AccountsReply(house);
}

Answer RemoveAccount(House& house, Request request) {
  const std::string name = TextAt(request, "account");
  RequireDone(house.access.RemoveAccount(name));
  Note(house, request, "access", fmt::format("account {} removed", name));
  co_return AccountsReply(house);
}

}  // namespace hub::api
