#include "access/Role.h"

#include <algorithm>
#include <array>

namespace hub::access {

namespace {

// In the order of Role.
constexpr std::array<std::string_view, 4> kNames{"none", "view", "use", "admin"};

}  // namespace

std::string_view NameOf(Role role) { return kNames[static_cast<size_t>(role)]; }

std::optional<Role> ParseRole(std::string_view name) {
  const auto* found = std::ranges::find(kNames, name);
  if (found == kNames.end() || found == kNames.begin()) return std::nullopt;
  return static_cast<Role>(found - kNames.begin());
}

}  // namespace hub::access
