// The cookie that a browser shows its session with. Pure functions, for any thread.
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace hub::access {

// The secret in a Cookie header (several of them joined by "; "). Nothing where there is none,
// and nothing where there are two: one of them may be planted.
std::optional<std::string_view> SessionCookie(std::string_view header);

// The value of a Set-Cookie header; an empty secret deletes the cookie. `tls`: whether the client
// came over it, then the cookie is never sent without.
std::string FormatSessionCookie(std::string_view secret, bool tls);

}  // namespace hub::access
