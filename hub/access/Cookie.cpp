#include "access/Cookie.h"

#include <algorithm>

namespace hub::access {

namespace {

constexpr std::string_view kName = "qelm_session=";
constexpr std::string_view kAttributes = "; Path=/; HttpOnly; SameSite=Strict";

// The hub knows when a session is over. 400 days is the most that browsers keep a cookie.
constexpr std::string_view kKept = "; Max-Age=34560000";
constexpr std::string_view kDeleted = "; Max-Age=0";

}  // namespace

std::optional<std::string_view> SessionCookie(std::string_view header) {
  std::optional<std::string_view> secret;
  while (!header.empty()) {
    const size_t end = header.find(';');
    std::string_view cookie = header.substr(0, end);
    header = end == std::string_view::npos ? std::string_view{} : header.substr(end + 1);
    cookie.remove_prefix(std::min(cookie.find_first_not_of(' '), cookie.size()));
    if (!cookie.starts_with(kName)) continue;
    if (secret) return std::nullopt;
    secret = cookie.substr(kName.size());
  }
  if (secret && secret->empty()) return std::nullopt;
  return secret;
}

std::string FormatSessionCookie(std::string_view secret, bool tls) {
  std::string cookie(kName);
  cookie += secret;
  cookie += kAttributes;
  cookie += secret.empty() ? kDeleted : kKept;
  if (tls) cookie += "; Secure";
  return cookie;
}

}  // namespace hub::access
