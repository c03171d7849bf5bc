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

}  // namespace

Hosts::Hosts(const std::vector<std::string>& names) : names_{"localhost"} {
  for (const std::string& name : names) names_.push_back(LowerCase(name));
}

bool Hosts::Allow(std::string_view header) const {
  const auto parts = SplitHostAndPort(header);
  if (!parts) return false;
  const bool is_v6 = parts->host.find(':') != std::string_view::npos;
  if (ParseAddress(parts->host)) return parts->in_brackets == is_v6;
  return !parts->in_brackets && std::ranges::count(names_, LowerCase(parts->host)) > 0;
}

}  // namespace hub::access
