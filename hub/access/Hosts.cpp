#include "access/Hosts.h"

#include <algorithm>

#include "access/HostAndPort.h"
#include "access/Network.h"

namespace hub::access {

namespace {

std::string LowerCase(std::string_view text) {
  std::string lower(text);
  for (char& letter : lower)
    if (letter >= 'A' && letter <= 'Z') letter = static_cast<char>(letter - 'A' + 'a');
  return lower;
}

// No machine's own, and yet it leads to one: unspecified, or IPv4 that is written as IPv6. Browsers
// do not take it for loopback, and do not say there which site's page asks.
bool StandsForAnother(std::string_view address, bool is_v6) {
  const bool is_mapped = is_v6 && address.find(':') == std::string_view::npos;
  return is_mapped || address == "0.0.0.0" || address == "::";
}

}  // namespace

Hosts::Hosts(const std::vector<std::string>& names) : names_{"localhost"} {
  for (const std::string& name : names) names_.push_back(LowerCase(name));
}

bool Hosts::Allow(std::string_view header) const {
  const auto parts = SplitHostAndPort(header);
  if (!parts) return false;
  const bool is_v6 = parts->host.find(':') != std::string_view::npos;
  if (const auto address = ParseAddress(parts->host))
    return parts->in_brackets == is_v6 && !StandsForAnother(*address, is_v6);
  return !parts->in_brackets && std::ranges::count(names_, LowerCase(parts->host)) > 0;
}

}  // namespace hub::access
