#include "api/fakes/FakeAccess.h"

#include <stdexcept>

#include "access/Access.h"

FakeAccess* FakeAccess::now = nullptr;

namespace hub::access {

namespace {

std::optional<Refusal> Refused() {
  if (!FakeAccess::now->refusal) return std::nullopt;
  return static_cast<Refusal>(*FakeAccess::now->refusal);
}

void Note(const std::string& text) { FakeAccess::now->asked.push_back(text); }

std::string Quoted(const std::string& text) { return " '" + text + '\''; }

}  // namespace

std::string_view NameOf(Role role) {
  constexpr std::string_view kNames[] = {"none", "view", "use", "admin"};
  return kNames[static_cast<size_t>(role)];
}

std::optional<Role> ParseRole(std::string_view name) {
  for (const Role role : {Role::kView, Role::kUse, Role::kAdmin})
    if (NameOf(role) == name) return role;
  return std::nullopt;
}

struct Access::Parts {};

Access::Access(boost::asio::io_context&, const model::Clock&, const std::optional<std::string>&,
               Sinks, PasswordCost) {}
Access::~Access() = default;

boost::asio::awaitable<std::variant<Session, Refusal, Wait>> Access::LogIn(std::string account,
                                                                           std::string password,
                                                                           std::string address) {
  Note("log-in " + account + Quoted(password) + " from " + address);
  if (FakeAccess::now->wait) co_return Wait{std::chrono::seconds(*FakeAccess::now->wait)};
  if (const auto refusal = Refused()) co_return *refusal;
  if (FakeAccess::now->fails) throw std::runtime_error("the thread is gone");
  const auto known = FakeAccess::now->accounts.find(account);
  if (known == FakeAccess::now->accounts.end()) co_return Refusal::kWrong;
  Session session;
  session.secret = "cookie-of-" + account;
  session.caller = {account, known->second, "session-1", address};
  co_return session;
}

void Access::LogOut(const std::string& session) { Note("log-out " + session); }

std::string Access::MakeTicket(const Caller& caller) { return "ticket-of-" + caller.account; }

std::vector<Account> Access::Accounts() const {
  std::vector<Account> list;
  for (const auto& [name, role] : FakeAccess::now->accounts) list.push_back({name, role});
  return list;
}

std::vector<Token> Access::Tokens() const {
  std::vector<Token> list;
  for (const auto& [name, role] : FakeAccess::now->tokens) list.push_back({name, role});
  return list;
}

boost::asio::awaitable<std::optional<Refusal>> Access::AddAccount(std::string name,
                                                                  std::string password, Role role) {
  Note("add " + name + ' ' + std::string(NameOf(role)) + Quoted(password));
  const auto refusal = Refused();
  if (!refusal) FakeAccess::now->accounts[name] = role;
  co_return refusal;
}

boost::asio::awaitable<std::optional<Refusal>> Access::ChangeAccount(
    std::string name, std::optional<std::string> password, std::optional<Role> role) {
  std::string text = "change " + name;
  if (role) text += ' ' + std::string(NameOf(*role));
  if (password) text += Quoted(*password);
  Note(text);
  const auto refusal = Refused();
  if (!refusal && role) FakeAccess::now->accounts[name] = *role;
  co_return refusal;
}

std::optional<Refusal> Access::RemoveAccount(const std::string& name) {
  Note("remove " + name);
  if (!Refused()) FakeAccess::now->accounts.erase(name);
  return Refused();
}

std::variant<std::string, Refusal> Access::AddToken(const std::string& name, Role role) {
  if (const auto refusal = Refused()) return *refusal;
  FakeAccess::now->tokens[name] = role;
  return "secret-of-" + name;
}

std::optional<Refusal> Access::RemoveToken(const std::string& name) {
  if (!Refused()) FakeAccess::now->tokens.erase(name);
  return Refused();
}

}  // namespace hub::access
