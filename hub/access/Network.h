// Addresses of the network as text. Pure functions.
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace hub::access {

// As it is written everywhere here: IPv6 in its short form, an IPv4 address inside of IPv6 as
// IPv4. Nothing where the text is no literal address; a zone ("%eth0") is none.
std::optional<std::string> ParseAddress(std::string_view text);

bool IsLoopback(std::string_view address);

// Whom tries are counted for. Whoever has one IPv6 address has all of its /64.
std::string NetworkOf(std::string_view address);

}  // namespace hub::access
