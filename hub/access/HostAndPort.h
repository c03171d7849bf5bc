// "host:port" taken apart, as it stands in headers and settings. Pure.
#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

namespace hub::access {

struct HostAndPort {
  std::string_view host;  // not empty; of "[::1]:80" what stands in the brackets
  bool in_brackets = false;
  std::optional<uint16_t> port;  // not 0
};

// Nothing where a colon, a bracket or a digit is not where it should be. What the host is made
// of is not looked at beyond that.
std::optional<HostAndPort> SplitHostAndPort(std::string_view text);

}  // namespace hub::access
