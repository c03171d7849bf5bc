// Who is behind a proxy. Anybody can write an X-Forwarded-For; each proxy adds at its right end
// whom it was asked by. So it is read from the right, for as long as proxies of ours have written
// it. Pure; any thread.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace hub::access {

// `peer` is the address of the connection, empty on the Unix socket; `header` is the value of
// X-Forwarded-For, several of them joined by commas; `proxies` are literal addresses. Gives the
// first address from the right that is no proxy of ours; "unknown" where that is no address: the
// proxy's own may be loopback, which is trusted more.
std::string ClientAddress(std::string_view peer, std::string_view header,
                          const std::vector<std::string>& proxies);

}  // namespace hub::access
