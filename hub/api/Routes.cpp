#include <algorithm>
#include <array>
#include <optional>
#include <string>
#include <utility>

#include "api/Api.h"
#include "protocol/Hex.h"

namespace hub::api {

namespace {

constexpr std::array<std::string_view, 5> kVerbNames{"GET", "PUT", "POST", "PATCH", "DELETE"};

// The part up to the next slash; it and the slash are taken off.
std::string_view TakeSegment(std::string_view& path) {
  const size_t end = std::min(path.find('/'), path.size());
  const std::string_view segment = path.substr(0, end);
  path.remove_prefix(std::min(end + 1, path.size()));
  return segment;
}

std::optional<uint8_t> HexPair(std::string_view digits) {
  std::string upper(digits);
  for (char& digit : upper)
    if (digit >= 'a' && digit <= 'f') digit = static_cast<char>(digit - 'a' + 'A');
  return protocol::ParseHexByte(upper);
}

// Nothing where an escape is broken, or where printable ASCII is not all there is.
std::optional<std::string> Decoded(std::string_view segment) {
  std::string text;
  while (!segment.empty()) {
    char c = segment.front();
    size_t length = 1;
    if (c == '%') {
      const auto byte = HexPair(segment.substr(1, 2));
      if (!byte) return std::nullopt;
      c = static_cast<char>(*byte);
      length = 3;
    }
    if (c < ' ' || c > '~') return std::nullopt;
    text += c;
    segment.remove_prefix(length);
  }
  return text;
}

bool IsName(std::string_view segment) { return segment.starts_with('{'); }

// What the path holds, where it is of the route.
std::optional<boost::json::object> Matched(std::string_view route, std::string_view path) {
  if (std::ranges::count(route, '/') != std::ranges::count(path, '/')) return std::nullopt;
  boost::json::object parameters;
  while (!route.empty()) {
    const std::string_view wanted = TakeSegment(route);
    const std::string_view segment = TakeSegment(path);
    if (!IsName(wanted)) {
      if (segment != wanted) return std::nullopt;
      continue;
    }
    const auto text = Decoded(segment);
    if (!text || text->empty()) return std::nullopt;
    parameters[wanted.substr(1, wanted.size() - 2)] = *text;
  }
  return parameters;
}

}  // namespace

RouteMatch FindRoute(Verb verb, std::string_view path) {
  RouteMatch match;
  for (const Method& method : Methods()) {
    if (method.route.empty()) continue;
    auto parameters = Matched(method.route, path);
    if (!parameters) continue;
    if (method.verb == verb) return {&method, "", std::move(*parameters)};
    if (!match.allowed.empty()) match.allowed += ", ";
    match.allowed += kVerbNames[static_cast<size_t>(method.verb)];
  }
  return match;
}

}  // namespace hub::api
