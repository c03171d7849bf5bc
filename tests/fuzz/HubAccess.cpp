// What the doors ask hub::access::Access, of the accounts and tokens of the API's tests.
#include <utility>

#include "access/Access.h"
#include "api/fakes/FakeAccess.h"

namespace hub::access {

namespace {

std::optional<Caller> Find(const std::map<std::string, Role>& among, std::string_view mark,
                           std::string_view secret, std::string_view address) {
  if (!secret.starts_with(mark)) return std::nullopt;
  const auto found = among.find(std::string(secret.substr(mark.size())));
  if (found == among.end()) return std::nullopt;
  return Caller{found->first, found->second, "session-1", std::string(address)};
}

}  // namespace

bool Access::HasAccounts() const { return !FakeAccess::now->accounts.empty(); }

std::optional<Caller> Access::BySecret(std::string_view secret, std::string_view address) const {
  return Find(FakeAccess::now->accounts, "cookie-of-", secret, address);
}

std::optional<Caller> Access::ByToken(std::string_view token, std::string_view address) const {
  return Find(FakeAccess::now->tokens, "secret-of-", token, address);
}

std::optional<Caller> Access::TakeTicket(std::string_view ticket, std::string_view address) {
  return Find(FakeAccess::now->accounts, "ticket-of-", ticket, address);
}

}  // namespace hub::access
