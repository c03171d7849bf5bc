#include "settings/Endpoint.h"

#include "access/HostAndPort.h"
#include "access/Network.h"

namespace hub::settings {

std::optional<Endpoint> ParseEndpoint(std::string_view text) {
  const auto parts = access::SplitHostAndPort(text);
  if (!parts || !parts->port) return std::nullopt;
  const bool is_v6 = parts->host.find(':') != std::string_view::npos;
  auto address = access::ParseAddress(parts->host);
  if (!address || parts->in_brackets != is_v6) return std::nullopt;
  return Endpoint{std::move(*address), *parts->port};
}

std::string ToText(const Endpoint& endpoint) {
  const bool is_v6 = endpoint.address.find(':') != std::string::npos;
  const std::string host = is_v6 ? "[" + endpoint.address + "]" : endpoint.address;
  return host + ":" + std::to_string(endpoint.port);
}

}  // namespace hub::settings
