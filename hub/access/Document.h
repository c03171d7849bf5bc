// What is kept of accounts, tokens and sessions, as a JSON text:
//
//   {"version":1,
//    "accounts":[{"name":"operator","role":"admin","password":"$argon2id$..."}],
//    "tokens":[{"name":"scripts","role":"use","secret":"64 hexadecimal digits"}],
//    "sessions":[{"id":"16 hexadecimal digits","account":"operator",
//                 "secret":"64 hexadecimal digits","used":1795262400}]}
//
// All secrets are hashes; `used` is in seconds since 1970. Pure functions.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "access/Role.h"
#include "access/Sessions.h"

namespace hub::access {

struct AccountRecord {
  std::string name;
  Role role = Role::kView;
  std::string password;  // its hash
  bool operator==(const AccountRecord&) const = default;
};

struct TokenRecord {
  std::string name;
  Role role = Role::kView;
  std::string secret;  // its hash
  bool operator==(const TokenRecord&) const = default;
};

struct Document {
  std::vector<AccountRecord> accounts;
  std::vector<TokenRecord> tokens;
  std::vector<SessionRecord> sessions;
  bool operator==(const Document&) const = default;
};

// 1 to 32 letters, digits, "-", "_", ".".
bool IsName(std::string_view name);

std::string ToText(const Document& document);

// Throws std::runtime_error where the text is anything else than ToText makes, or where its
// accounts are without an admin.
Document ParseDocument(std::string_view text);

}  // namespace hub::access
