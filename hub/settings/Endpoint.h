// Where the hub listens: a literal address and a port. Pure.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace hub::settings {

struct Endpoint {
  std::string address;  // "127.0.0.1", "::1"; in its short form
  uint16_t port = 0;
  bool operator==(const Endpoint&) const = default;
};

std::optional<Endpoint> ParseEndpoint(std::string_view text);  // "127.0.0.1:5080", "[::1]:5080"
std::string ToText(const Endpoint& endpoint);

}  // namespace hub::settings
