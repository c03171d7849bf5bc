// Whether a request comes from a page of this hub. Browsers say where a page comes from whenever
// it writes or opens a WebSocket; other programs say nothing. Pure; any thread.
#pragma once

#include <optional>
#include <string_view>

namespace hub::access {

enum class AbsentOrigin { kAllowed, kRefused };

// `origin` and `host` are the values of the two headers, `scheme` is "http" or "https", as the
// client has used it. They have to agree to the letter.
bool IsOwnOrigin(std::optional<std::string_view> origin, std::string_view scheme,
                 std::string_view host, AbsentOrigin absent);

}  // namespace hub::access
