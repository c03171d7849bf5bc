#include "access/ForwardedFor.h"

#include <algorithm>
#include <optional>

#include "access/HostAndPort.h"
#include "access/Network.h"

namespace hub::access {

namespace {

constexpr std::string_view kBlanks = " \t";
constexpr char kNobodyKnows[] = "unknown";

std::string_view Trimmed(std::string_view text) {
  const size_t begin = text.find_first_not_of(kBlanks);
  if (begin == std::string_view::npos) return {};
  return text.substr(begin, text.find_last_not_of(kBlanks) - begin + 1);
}

// Some proxies write the port too.
std::optional<std::string> ReadEntry(std::string_view entry) {
  if (auto address = ParseAddress(entry)) return address;
  const auto parts = SplitHostAndPort(entry);
  if (!parts) return std::nullopt;
  return ParseAddress(parts->host);
}

}  // namespace

std::string ClientAddress(std::string_view peer, std::string_view header,
                          const std::vector<std::string>& proxies) {
  const auto is_ours = [&proxies](const std::string& address) {
    return std::ranges::any_of(
        proxies, [&address](const std::string& proxy) { return ParseAddress(proxy) == address; });
  };
  std::string client = ParseAddress(peer).value_or(std::string(peer));
  while (!header.empty() && is_ours(client)) {
    const size_t comma = header.rfind(',');
    const size_t begin = comma == std::string_view::npos ? 0 : comma + 1;
    auto before = ReadEntry(Trimmed(header.substr(begin)));
    if (!before) return kNobodyKnows;
    client = std::move(*before);
    header = header.substr(0, begin == 0 ? 0 : comma);
  }
  return client;
}

}  // namespace hub::access
