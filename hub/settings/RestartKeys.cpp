#include "settings/RestartKeys.h"

#include <array>

namespace hub::settings {

namespace {

template <auto Section, auto Field>
bool Differs(const Settings& left, const Settings& right) {
  return (left.*Section).*Field != (right.*Section).*Field;
}

template <auto Section, auto Ports, size_t Index>
bool PortDiffers(const Settings& left, const Settings& right) {
  return ((left.*Section).*Ports)[Index] != ((right.*Section).*Ports)[Index];
}

struct Row {
  std::string_view key;
  bool (*differs)(const Settings& left, const Settings& right);
};

using link::LinkOptions;
using store::StoreOptions;

constexpr std::array<Row, 20> kRows{{
    // clang-format off
    {"daemon.host",           Differs<&Settings::daemon, &LinkOptions::host>},
    {"daemon.cae",            PortDiffers<&Settings::daemon, &LinkOptions::ports, 0>},
    {"daemon.io",             PortDiffers<&Settings::daemon, &LinkOptions::ports, 1>},
    {"daemon.mon",            PortDiffers<&Settings::daemon, &LinkOptions::ports, 2>},
    {"daemon.log",            Differs<&Settings::daemon, &LinkOptions::log>},
    {"http.listen",           Differs<&Settings::http, &HttpOptions::listen>},
    {"http.hosts",            Differs<&Settings::http, &HttpOptions::hosts>},
    {"http.proxies",          Differs<&Settings::http, &HttpOptions::proxies>},
    {"http.certificate",      Differs<&Settings::http, &HttpOptions::certificate>},
    {"http.key",              Differs<&Settings::http, &HttpOptions::key>},
    {"http.insecure-http",    Differs<&Settings::http, &HttpOptions::insecure_http>},
    {"http.max-connections",  Differs<&Settings::http, &HttpOptions::max_connections>},
    {"text.listen",           Differs<&Settings::text, &TextOptions::listen>},
    {"text.cae",              PortDiffers<&Settings::text, &TextOptions::ports, 0>},
    {"text.io",               PortDiffers<&Settings::text, &TextOptions::ports, 1>},
    {"text.mon",              PortDiffers<&Settings::text, &TextOptions::ports, 2>},
    {"store.folder",          Differs<&Settings::store, &StoreOptions::folder>},
    {"store.keep-days",       Differs<&Settings::store, &StoreOptions::keep_days>},
    {"store.max-mb",          Differs<&Settings::store, &StoreOptions::max_mb>},
    {"virtual-bus.control",   Differs<&Settings::virtual_bus, &VirtualBusOptions::control>},
    // clang-format on
}};

}  // namespace

std::vector<std::string_view> RestartKeys(const Settings& started, const Settings& fresh) {
  std::vector<std::string_view> keys;
  for (const Row& row : kRows)
    if (row.differs(started, fresh)) keys.push_back(row.key);
  return keys;
}

}  // namespace hub::settings
