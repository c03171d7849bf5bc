// qelm-hub.toml: a struct a section, whose initial values are the file's defaults.
//
// Every key may be left out. What is unknown, of another type, or out of range is an error, and
// all of them are listed. Pure but for Load; any thread.
#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

#include "link/Link.h"
#include "model/Settings.h"
#include "settings/Endpoint.h"
#include "store/Store.h"

namespace hub::settings {

struct HttpOptions {
  std::vector<Endpoint> listen{{"127.0.0.1", 5080}, {"::1", 5080}};
  std::vector<std::string> hosts;    // further names under which the page is reached
  std::vector<std::string> proxies;  // literal addresses whose X-Forwarded-For counts
  std::string certificate;           // paths; empty: no TLS
  std::string key;
  bool insecure_http = false;  // addresses that others can reach, without TLS
  int max_connections = 256;
  bool operator==(const HttpOptions&) const = default;
};

struct TextOptions {
  std::string listen = "127.0.0.1";                 // a loopback address; empty: no text ports
  std::array<uint16_t, 3> ports{5110, 5111, 5112};  // by protocol::Port
  bool operator==(const TextOptions&) const = default;
};

enum class Discovery { kDevice, kComponents, kOff };

struct BrokerOptions {
  std::string host;  // empty: no broker
  uint16_t port = 1883;
  std::string user;
  std::string password_file;  // paths; empty: none
  std::string ca;
  std::string certificate;
  std::string key;
  std::string name;  // in topics; empty: the host's
  Discovery discovery = Discovery::kDevice;
  bool boards = false;
  bool operator==(const BrokerOptions&) const = default;
};

struct VirtualBusOptions {
  std::string control;  // path of its socket; empty: the bus is a real one
  bool operator==(const VirtualBusOptions&) const = default;
};

struct Settings {
  link::LinkOptions daemon;
  HttpOptions http;
  TextOptions text;
  store::StoreOptions store;
  BrokerOptions broker;
  model::Settings names;  // of [names], [channel], [card] and [infrared]
  VirtualBusOptions virtual_bus;
  bool operator==(const Settings&) const = default;
};

struct SettingsError {
  unsigned line = 0;  // from 1; 0 where the file itself is the trouble
  unsigned column = 0;
  std::string key;  // "http.listen"; empty where there is none
  std::string text;
  bool operator==(const SettingsError&) const = default;
};

using SettingsErrors = std::vector<SettingsError>;  // in the order of the file

// "FILE:LINE:COLUMN: text", a line.
std::string ToText(const SettingsError& error, std::string_view path);

std::variant<Settings, SettingsErrors> Parse(std::string_view text);

// A file that is not there is an error, unless nobody has named it: then all defaults hold.
std::variant<Settings, SettingsErrors> Load(const std::string& path, bool may_be_missing = false);

}  // namespace hub::settings
