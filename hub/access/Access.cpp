#include "access/Access.h"

#include <algorithm>

#include "access/Document.h"
#include "access/Network.h"
#include "access/Passwords.h"
#include "access/Sessions.h"
#include "access/Throttle.h"
#include "access/Tickets.h"

namespace hub::access {

namespace {

namespace asio = boost::asio;

constexpr size_t kShortestPassword = 8;
constexpr size_t kLongestPassword = 1024;
constexpr std::chrono::seconds kQueueFull{1};
constexpr std::string_view kTokenPrefix = "token:";

// Administrators come from anywhere; their passwords share one place in the queue.
const char* const kAdministration = "";

// Characters of UTF-8, not bytes.
size_t Length(std::string_view text) {
  return static_cast<size_t>(std::ranges::count_if(
      text, [](char byte) { return (static_cast<unsigned char>(byte) & 0xC0U) != 0x80U; }));
}

std::optional<Refusal> WhyNoPassword(std::string_view password) {
  if (Length(password) < kShortestPassword) return Refusal::kShortPassword;
  if (Length(password) > kLongestPassword) return Refusal::kLongPassword;
  return std::nullopt;
}

template <typename Record>
Record* Find(std::vector<Record>& records, std::string_view name) {
  const auto found = std::ranges::find(records, name, &Record::name);
  return found == records.end() ? nullptr : &*found;
}

}  // namespace

struct Access::Parts {
  Parts(asio::io_context& context, const model::Clock& a_clock, Document document, Sinks a_sinks,
        PasswordCost cost)
      : clock(a_clock),
        sinks(std::move(a_sinks)),
        accounts(std::move(document.accounts)),
        tokens(std::move(document.tokens)),
        sessions(a_clock, document.sessions),
        passwords(context, cost) {}

  void Keep() { sinks.keep(ToText({accounts, tokens, sessions.Records()})); }
  void EndSessions(const std::string& account);
  Session OpenSession(const AccountRecord& account, const std::string& address);
  bool StillHolds(const Caller& caller);
  bool IsLastAdmin(const AccountRecord& account) const;
  std::optional<Refusal> WhyNotAdd(const std::string& name, Role role);
  std::optional<Refusal> WhyNotChange(const std::string& name, std::optional<Role> role);

  const model::Clock& clock;
  const Sinks sinks;
  std::vector<AccountRecord> accounts;
  std::vector<TokenRecord> tokens;
  Sessions sessions;
  Tickets tickets;
  Throttle throttle;
  Counters counters;
  Passwords passwords;
};

void Access::Parts::EndSessions(const std::string& account) {
  for (const std::string& id : sessions.CloseAll(account)) sinks.ended(id);
}

Session Access::Parts::OpenSession(const AccountRecord& account, const std::string& address) {
  const Sessions::Opened opened = sessions.Open(account.name);
  Keep();
  if (opened.replaced) sinks.ended(*opened.replaced);
  return {opened.secret, {account.name, account.role, opened.id, address}};
}

// Whether what a ticket was made for is still there.
bool Access::Parts::StillHolds(const Caller& caller) {
  if (!caller.session.empty()) return sessions.Use(caller.session).has_value();
  if (caller.account.starts_with(kTokenPrefix))
    return Find(tokens, caller.account.substr(kTokenPrefix.size())) != nullptr;
  return accounts.empty() || caller.address.empty();
}

bool Access::Parts::IsLastAdmin(const AccountRecord& account) const {
  return account.role == Role::kAdmin &&
         std::ranges::count(accounts, Role::kAdmin, &AccountRecord::role) == 1;
}

std::optional<Refusal> Access::Parts::WhyNotAdd(const std::string& name, Role role) {
  if (!IsName(name)) return Refusal::kBadName;
  if (Find(accounts, name) != nullptr) return Refusal::kExists;
  if (accounts.empty() && role != Role::kAdmin) return Refusal::kFirstIsAdmin;
  return std::nullopt;
}

std::optional<Refusal> Access::Parts::WhyNotChange(const std::string& name,
                                                   std::optional<Role> role) {
  const AccountRecord* account = Find(accounts, name);
  if (account == nullptr) return Refusal::kMissing;
  if (role && *role != Role::kAdmin && IsLastAdmin(*account)) return Refusal::kLastAdmin;
  return std::nullopt;
}

Access::Access(asio::io_context& context, const model::Clock& clock,
               const std::optional<std::string>& document, Sinks sinks, PasswordCost cost)
    : parts_(std::make_unique<Parts>(context, clock,
                                     document ? ParseDocument(*document) : Document{},
                                     std::move(sinks), cost)) {}

Access::~Access() = default;

bool Access::HasAccounts() const { return !parts_->accounts.empty(); }

asio::awaitable<std::variant<Session, Refusal, Wait>> Access::LogIn(std::string account,
                                                                    std::string password,
                                                                    std::string address) {
  Parts& my = *parts_;
  if (my.accounts.empty()) co_return Refusal::kWrong;
  std::string network = NetworkOf(address);
  if (!my.passwords.HasRoom(network)) {
    ++my.counters.throttled;
    co_return Wait{kQueueFull};
  }
  if (const auto pause = my.throttle.Try(account, address, my.clock.Steady())) {
    ++my.counters.throttled;
    co_return Wait{*pause};
  }
  // An unknown account is checked against somebody else's password, so that it takes as long.
  const AccountRecord* known = Find(my.accounts, account);
  const std::string hash = (known != nullptr ? *known : my.accounts.front()).password;
  const bool was_known = known != nullptr;
  auto check = my.passwords.Check(hash, std::move(password), std::move(network));
  const bool matches = co_await std::move(check);
  // Meanwhile the account may have gone or got a new password.
  known = Find(my.accounts, account);
  if (!was_known || !matches || known == nullptr || known->password != hash) {
    ++my.counters.wrong;
    co_return Refusal::kWrong;
  }
  ++my.counters.logins;
  my.throttle.Clear(account, address);
  co_return my.OpenSession(*known, address);
}

std::optional<Caller> Access::BySecret(std::string_view secret, std::string_view address) const {
  const auto found = parts_->sessions.Find(secret);
  if (!found) return std::nullopt;
  const AccountRecord* account = Find(parts_->accounts, found->account);
  if (account == nullptr) return std::nullopt;
  if (found->noted) parts_->Keep();
  return Caller{account->name, account->role, found->id, std::string(address)};
}

std::optional<Caller> Access::ByToken(std::string_view token, std::string_view address) const {
  const std::string hash = HashOf(token);
  const auto found = std::ranges::find_if(
      parts_->tokens, [&hash](const TokenRecord& row) { return IsSame(row.secret, hash); });
  if (found == parts_->tokens.end()) return std::nullopt;
  return Caller{std::string(kTokenPrefix) + found->name, found->role, "", std::string(address)};
}

void Access::LogOut(const std::string& session) {
  if (!parts_->sessions.Close(session)) return;
  parts_->Keep();
  parts_->sinks.ended(session);
}

void Access::NoteUse(const std::string& session) {
  const auto found = parts_->sessions.Use(session);
  if (found && found->noted) parts_->Keep();
}

std::string Access::MakeTicket(const Caller& caller) {
  return parts_->tickets.Make(caller, parts_->clock.Steady());
}

std::optional<Caller> Access::TakeTicket(std::string_view ticket, std::string_view address) {
  auto caller = parts_->tickets.Take(ticket, address, parts_->clock.Steady());
  if (!caller || !parts_->StillHolds(*caller)) return std::nullopt;
  return caller;
}

std::vector<Account> Access::Accounts() const {
  std::vector<Account> accounts;
  for (const AccountRecord& account : parts_->accounts)
    accounts.push_back({account.name, account.role});
  return accounts;
}

std::vector<Token> Access::Tokens() const {
  std::vector<Token> tokens;
  for (const TokenRecord& token : parts_->tokens) tokens.push_back({token.name, token.role});
  return tokens;
}

asio::awaitable<std::optional<Refusal>> Access::AddAccount(std::string name, std::string password,
                                                           Role role) {
  Parts& my = *parts_;
  if (const auto refusal = my.WhyNotAdd(name, role)) co_return refusal;
  if (const auto refusal = WhyNoPassword(password)) co_return refusal;
  if (!my.passwords.HasRoom(kAdministration)) co_return Refusal::kBusy;
  auto hashing = my.passwords.Hash(std::move(password), kAdministration);
  std::string hash = co_await std::move(hashing);
  // Meanwhile somebody else may have added one.
  if (const auto refusal = my.WhyNotAdd(name, role)) co_return refusal;
  my.accounts.push_back({std::move(name), role, std::move(hash)});
  my.Keep();
  if (my.accounts.size() == 1 && my.sinks.login_needed) my.sinks.login_needed();
  co_return std::nullopt;
}

asio::awaitable<std::optional<Refusal>> Access::ChangeAccount(std::string name,
                                                              std::optional<std::string> password,
                                                              std::optional<Role> role) {
  Parts& my = *parts_;
  if (const auto refusal = my.WhyNotChange(name, role)) co_return refusal;
  std::string hash;
  if (password) {
    if (const auto refusal = WhyNoPassword(*password)) co_return refusal;
    if (!my.passwords.HasRoom(kAdministration)) co_return Refusal::kBusy;
    auto hashing = my.passwords.Hash(std::move(*password), kAdministration);
    hash = co_await std::move(hashing);
    // Meanwhile the account may have gone, or become the last admin.
    if (const auto refusal = my.WhyNotChange(name, role)) co_return refusal;
  }
  AccountRecord& account = *Find(my.accounts, name);
  const bool changes = password || (role && *role != account.role);
  if (!changes) co_return std::nullopt;
  if (password) account.password = std::move(hash);
  if (role) account.role = *role;
  my.EndSessions(name);
  my.Keep();
  co_return std::nullopt;
}

std::optional<Refusal> Access::RemoveAccount(const std::string& name) {
  const AccountRecord* account = Find(parts_->accounts, name);
  if (account == nullptr) return Refusal::kMissing;
  if (parts_->IsLastAdmin(*account)) return Refusal::kLastAdmin;
  std::erase_if(parts_->accounts, [&name](const AccountRecord& row) { return row.name == name; });
  parts_->EndSessions(name);
  parts_->Keep();
  return std::nullopt;
}

std::variant<std::string, Refusal> Access::AddToken(const std::string& name, Role role) {
  if (!IsName(name)) return Refusal::kBadName;
  if (Find(parts_->tokens, name) != nullptr) return Refusal::kExists;
  std::string secret = RandomSecret();
  parts_->tokens.push_back({name, role, HashOf(secret)});
  parts_->Keep();
  return secret;
}

std::optional<Refusal> Access::RemoveToken(const std::string& name) {
  if (Find(parts_->tokens, name) == nullptr) return Refusal::kMissing;
  std::erase_if(parts_->tokens, [&name](const TokenRecord& row) { return row.name == name; });
  // Another one of this name must not let them in.
  parts_->tickets.Drop(std::string(kTokenPrefix) + name);
  parts_->Keep();
  parts_->sinks.token_ended(name);
  return std::nullopt;
}

Access::Counters Access::Count() const {
  Counters counters = parts_->counters;
  counters.hashed = parts_->passwords.Computed();
  return counters;
}

}  // namespace hub::access
