#include <fmt/format.h>

#include <boost/json/array.hpp>
#include <utility>
#include <variant>

#include "api/Handlers.h"
#include "api/Refusals.h"

namespace hub::api {

namespace json = boost::json;

namespace {

Reply TokensReply(const House& house) {
  json::array tokens;
  for (const access::Token& token : house.access.Tokens())
    tokens.push_back(json::object{{"name", token.name}, {"role", access::NameOf(token.role)}});
  return Done(json::object{{"tokens", std::move(tokens)}});
}

}  // namespace

Answer ListTokens(House& house, Request) { co_return TokensReply(house); }

Answer AddToken(House& house, Request request) {
  const std::string name = TextAt(request, "name");
  const access::Role role =
      access::ParseRole(TextAt(request, "role")).value_or(access::Role::kView);
  const auto made = house.access.AddToken(name, role);
  if (const auto* refusal = std::get_if<access::Refusal>(&made)) throw ProblemOf(*refusal, "name");
  Note(house, request, "access",
       fmt::format("token {} added, role {}", name, access::NameOf(role)));
  co_return Done(json::object{
      {"name", name}, {"role", access::NameOf(role)}, {"token", std::get<std::string>(made)}});
}

Answer RemoveToken(House& house, Request request) {
  const std::string name = TextAt(request, "name");
  if (const auto refusal = house.access.RemoveToken(name)) throw ProblemOf(*refusal, "name");
  Note(house, request, "access", fmt::format("token {} removed", name));
  co_return TokensReply(house);
}

}  // namespace hub::api
