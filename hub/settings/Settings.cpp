#include "settings/Settings.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <fstream>
#include <sstream>
#include <utility>

#include "access/Network.h"
#include "settings/Names.h"
#include "settings/Section.h"

namespace hub::settings {

namespace {

constexpr int kMostConnections = 10'000;
constexpr int kMostDays = 36'500;
constexpr int kMostMegabytes = 1 << 20;

constexpr std::array<std::string_view, 3> kPortKeys{"cae", "io", "mon"};  // by protocol::Port
constexpr std::array<std::string_view, 3> kDiscoveries{"device", "components", "off"};

const Rule kListen{[](std::string_view text) { return ParseEndpoint(text).has_value(); },
                   "an address and a port: \"127.0.0.1:5080\", \"[::1]:5080\""};

void TakePorts(Section& section, std::array<uint16_t, 3>& ports) {
  for (size_t i = 0; i < ports.size(); ++i) section.TakePort(kPortKeys[i], ports[i]);
  for (size_t i = 0; i < ports.size(); ++i)
    if (section.Has(kPortKeys[i]) && std::ranges::count(ports, ports[i]) > 1)
      section.Complain(kPortKeys[i], "is another one's port too; the three differ");
}

// One without the other cannot be meant.
void TakePair(Section& section, std::string& certificate, std::string& key) {
  section.Take("certificate", certificate, kPathOrNone);
  section.Take("key", key, kSecretPathOrNone);
  if (!certificate.empty() && key.empty()) section.Complain("certificate", "wants `key` too");
  if (certificate.empty() && !key.empty()) section.Complain("key", "wants `certificate` too");
}

void TakeDaemon(Section section, link::LinkOptions& daemon) {
  section.Take("host", daemon.host, kHost);
  TakePorts(section, daemon.ports);
  section.Take("log", daemon.log, kPathOrNone);
  section.Finish();
}

void TakeListen(Section& section, std::vector<Endpoint>& listen) {
  if (!section.Has("listen")) return;
  std::vector<std::string> texts;
  section.Take("listen", texts, kListen);
  listen.clear();
  for (const std::string& text : texts) {
    const Endpoint endpoint = *ParseEndpoint(text);
    if (std::ranges::count(listen, endpoint) > 0)
      section.Complain("listen", "has " + ToText(endpoint) + " twice");
    listen.push_back(endpoint);
  }
}

void TakeHttp(Section section, HttpOptions& http) {
  TakeListen(section, http.listen);
  section.Take("hosts", http.hosts, kHostName);
  section.Take("proxies", http.proxies, kAddress);
  TakePair(section, http.certificate, http.key);
  section.Take("insecure-http", http.insecure_http);
  section.TakeInteger("max-connections", http.max_connections, 1, kMostConnections);
  section.Finish();
  if (!http.certificate.empty() || http.insecure_http) return;
  for (const Endpoint& endpoint : http.listen)
    if (!access::IsLoopback(endpoint.address))
      section.Complain("listen", "has " + ToText(endpoint) +
                                     ", which others can reach; that takes `certificate` and "
                                     "`key`, or `insecure-http = true`");
}

void TakeText(Section section, TextOptions& text) {
  section.Take("listen", text.listen, kTextListen);
  TakePorts(section, text.ports);
  section.Finish();
}

void TakeStore(Section section, store::StoreOptions& store) {
  section.Take("folder", store.folder, kPath);
  section.TakeInteger("keep-days", store.keep_days, 1, kMostDays);
  section.TakeInteger("max-mb", store.max_mb, 1, kMostMegabytes);
  section.Finish();
}

void TakeBroker(Section section, BrokerOptions& broker) {
  section.Take("host", broker.host, kHostOrNone);
  section.TakePort("port", broker.port);
  section.Take("user", broker.user, kAnyText);
  section.Take("password-file", broker.password_file, kSecretPathOrNone);
  section.Take("ca", broker.ca, kPathOrNone);
  TakePair(section, broker.certificate, broker.key);
  section.Take("name", broker.name, kBoardName);
  section.TakeWord("discovery", kDiscoveries,
                   [&broker](size_t place) { broker.discovery = static_cast<Discovery>(place); });
  section.Take("boards", broker.boards);
  section.Finish();
}

void TakeVirtualBus(Section section, VirtualBusOptions& virtual_bus) {
  section.Take("control", virtual_bus.control, kPathOrNone);
  section.Finish();
}

Settings TakeAll(Section file) {
  Settings settings;
  TakeDaemon(file.Open("daemon"), settings.daemon);
  TakeHttp(file.Open("http"), settings.http);
  TakeText(file.Open("text"), settings.text);
  TakeStore(file.Open("store"), settings.store);
  TakeBroker(file.Open("broker"), settings.broker);
  settings.names = TakeNames(file);
  TakeVirtualBus(file.Open("virtual-bus"), settings.virtual_bus);
  file.Finish();
  return settings;
}

bool StandsBefore(const SettingsError& left, const SettingsError& right) {
  return std::pair(left.line, left.column) < std::pair(right.line, right.column);
}

// A key, and what stands where a value should, can hold the end of a line.
SettingsErrors InALineEach(SettingsErrors errors) {
  const auto is_control = [](unsigned char c) { return c < 0x20 || c == 0x7F; };
  for (SettingsError& error : errors) std::ranges::replace_if(error.text, is_control, ' ');
  return errors;
}

}  // namespace

std::string ToText(const SettingsError& error, std::string_view path) {
  std::string text(path);
  if (error.line > 0) text += ":" + std::to_string(error.line) + ":" + std::to_string(error.column);
  return text + ": " + error.text;
}

std::variant<Settings, SettingsErrors> Parse(std::string_view text) {
  try {
    const toml::table file = toml::parse(text);
    SettingsErrors errors;
    Settings settings = TakeAll(Section(file, errors));
    if (errors.empty()) return settings;
    std::ranges::stable_sort(errors, StandsBefore);
    return InALineEach(std::move(errors));
  } catch (const toml::parse_error& error) {
    const toml::source_position where = error.source().begin;
    return InALineEach({{where.line, where.column, "", std::string(error.description())}});
  }
}

std::variant<Settings, SettingsErrors> Load(const std::string& path, bool may_be_missing) {
  errno = 0;
  std::ifstream file(path, std::ios::binary);
  std::ostringstream text;
  if (!file.is_open() && errno == ENOENT && may_be_missing) return Settings{};
  const bool is_empty = file.peek() == std::ifstream::traits_type::eof();
  if (!is_empty) text << file.rdbuf();
  if (!file.is_open() || file.bad() || text.fail())
    return SettingsErrors{{0, 0, "", std::string("cannot be read: ") + std::strerror(errno)}};
  return Parse(text.str());
}

}  // namespace hub::settings
