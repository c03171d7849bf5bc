// Accounts, tokens, sessions, tickets, and the brakes on trying.
//
// It knows no sockets: a door says where a request comes from and what it carries. Secrets are
// kept as hashes only (passwords Argon2id, the others BLAKE2b) and compared in constant time.
// Hashing a password takes a tenth of a second; a thread of its own does it. One thread else.
// It goes when the io_context runs no more.
#pragma once

#include <boost/asio/awaitable.hpp>
#include <boost/asio/io_context.hpp>
#include <chrono>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

#include "access/Role.h"
#include "access/Secrets.h"
#include "model/Clock.h"

namespace hub::access {

struct Account {
  std::string name;
  Role role = Role::kView;
};

struct Token {
  std::string name;
  Role role = Role::kView;
};

// Why something was refused; the API words it.
enum class Refusal {
  kWrong,          // name or password
  kExists,         // the name is taken
  kMissing,        // no such account or token
  kLastAdmin,      // it would be gone
  kFirstIsAdmin,   // the first account has to be one
  kBadName,        // 1 to 32 letters, digits, "-", "_", "."
  kShortPassword,  // under 8 characters
  kLongPassword,   // over 1,024
  kBusy,           // too many passwords wait to be hashed
};

struct Wait {
  std::chrono::seconds time;  // too many tries of this pair, or too many that wait
};

struct Session {
  std::string secret;  // for the cookie
  Caller caller;
};

class Access {
 public:
  struct Sinks {
    // The document to be kept, whenever something has changed.
    std::function<void(std::string text)> keep;
    // Sessions that are over (log-out, new password, account gone): connections end.
    std::function<void(const std::string& session)> ended;
    // The same for connections that a token opened.
    std::function<void(const std::string& token_name)> token_ended;
    // The first account is there: connections over TCP that came without a login end.
    std::function<void()> login_needed = nullptr;
  };

  // `document` is what `keep` was given last; nothing at first. A text that cannot be read throws
  // std::runtime_error: a hub must not come up open because its accounts are lost.
  Access(boost::asio::io_context& context, const model::Clock& clock,
         const std::optional<std::string>& document, Sinks sinks, PasswordCost cost = {});
  ~Access();
  Access(const Access&) = delete;
  Access& operator=(const Access&) = delete;

  bool HasAccounts() const;

  // Sessions. An unknown account costs a hash as a known one does. A change of the account's role
  // ends its sessions too, since connections know the role that they came with.
  boost::asio::awaitable<std::variant<Session, Refusal, Wait>> LogIn(std::string account,
                                                                     std::string password,
                                                                     std::string address);
  std::optional<Caller> BySecret(std::string_view secret, std::string_view address) const;
  std::optional<Caller> ByToken(std::string_view token, std::string_view address) const;
  void LogOut(const std::string& session);
  void NoteUse(const std::string& session);  // by a connection that stays open; now and then

  // Good once, within 5 s, from the same address.
  std::string MakeTicket(const Caller& caller);
  std::optional<Caller> TakeTicket(std::string_view ticket, std::string_view address);

  // Accounts and tokens.
  std::vector<Account> Accounts() const;
  std::vector<Token> Tokens() const;
  boost::asio::awaitable<std::optional<Refusal>> AddAccount(std::string name, std::string password,
                                                            Role role);
  boost::asio::awaitable<std::optional<Refusal>> ChangeAccount(std::string name,
                                                               std::optional<std::string> password,
                                                               std::optional<Role> role);
  std::optional<Refusal> RemoveAccount(const std::string& name);
  std::variant<std::string, Refusal> AddToken(const std::string& name, Role role);  // its secret
  std::optional<Refusal> RemoveToken(const std::string& name);

  // For the monitoring system.
  struct Counters {
    uint64_t logins = 0;
    uint64_t wrong = 0;      // name or password
    uint64_t throttled = 0;  // had to wait
    uint64_t hashed = 0;     // passwords, known or not
  };
  Counters Count() const;

 private:
  struct Parts;
  std::unique_ptr<Parts> parts_;
};

}  // namespace hub::access
