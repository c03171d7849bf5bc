// Who may do what: three roles, each may do what the one before it may.
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace hub::access {

enum class Role { kNone, kView, kUse, kAdmin };

std::string_view NameOf(Role role);                    // "view"; "none" is nobody's
std::optional<Role> ParseRole(std::string_view name);  // "view", "use", "admin"

// kLocal: HTTP on the Unix socket.
enum class Door { kHttp, kLocal, kWebSocket, kText, kBroker };

// Somebody who asks, as the door has found out.
struct Caller {
  // "token:NAME" where a token was shown, which no account can be called; empty: nobody by name
  // (the Unix socket; loopback without accounts).
  std::string account;
  Role role = Role::kNone;
  std::string session;  // its id where a cookie brought it, not the cookie's secret
  std::string address;  // of the network; empty on the Unix socket
  Door door = Door::kHttp;
};

}  // namespace hub::access
