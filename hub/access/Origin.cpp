#include "access/Origin.h"

namespace hub::access {

namespace {

constexpr std::string_view kBehindScheme = "://";

}  // namespace

bool IsOwnOrigin(std::optional<std::string_view> origin, std::string_view scheme,
                 std::string_view host, AbsentOrigin absent) {
  if (!origin) return absent == AbsentOrigin::kAllowed;
  if (host.empty() || !origin->starts_with(scheme)) return false;
  const std::string_view rest = origin->substr(scheme.size());
  return rest.starts_with(kBehindScheme) && rest.substr(kBehindScheme.size()) == host;
}

}  // namespace hub::access
