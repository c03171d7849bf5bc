// The three ports of the daemon and what each says when it serves a client.
#pragma once

#include <array>
#include <string_view>

namespace hub::protocol {

enum class Port { kCae, kIo, kMon };

struct PortText {
  Port port;
  std::string_view word;      // as the hub's API names it
  std::string_view greeting;  // the first line
};

inline constexpr std::array<PortText, 3> kPorts{{
    {Port::kCae, "cae", "QELM CAE interface is ready"},
    {Port::kIo, "io", "QELM IO interface is ready"},
    {Port::kMon, "mon", "QELM MON interface is ready"},
}};

constexpr const PortText& TextOf(Port port) { return kPorts[static_cast<size_t>(port)]; }

}  // namespace hub::protocol
