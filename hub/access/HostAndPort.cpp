#include "access/HostAndPort.h"

#include <charconv>

namespace hub::access {

namespace {

constexpr size_t kMostDigits = 5;

std::optional<uint16_t> ParsePort(std::string_view digits) {
  if (digits.empty() || digits.size() > kMostDigits) return std::nullopt;
  uint16_t port = 0;
  const auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), port);
  if (error != std::errc{} || end != digits.data() + digits.size() || port == 0)
    return std::nullopt;
  return port;
}

}  // namespace

std::optional<HostAndPort> SplitHostAndPort(std::string_view text) {
  HostAndPort parts;
  parts.in_brackets = text.starts_with('[');
  const size_t end = parts.in_brackets ? text.find(']') : text.find(':');
  if (parts.in_brackets && end == std::string_view::npos) return std::nullopt;
  parts.host = parts.in_brackets ? text.substr(1, end - 1) : text.substr(0, end);
  if (parts.host.empty() || parts.host.find_first_of("[]") != std::string_view::npos)
    return std::nullopt;
  if (end == std::string_view::npos) return parts;
  const std::string_view rest = text.substr(parts.in_brackets ? end + 1 : end);
  if (rest.empty()) return parts;
  if (!rest.starts_with(':')) return std::nullopt;
  parts.port = ParsePort(rest.substr(1));
  if (!parts.port) return std::nullopt;
  return parts;
}

}  // namespace hub::access
