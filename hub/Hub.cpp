#include "Hub.h"

#include <systemd/sd-daemon.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <csignal>
#include <iostream>
#include <random>
#include <utility>
#include <variant>

#include "api/KeptSettings.h"
#include "settings/RestartKeys.h"

namespace hub {

namespace {

namespace asio = boost::asio;

// Documents of the store that are the hub's own.
constexpr std::string_view kIdentity = "identity";
constexpr std::string_view kOutputs = "outputs";
constexpr std::string_view kAccess = "access";

// A file that was set aside took the accounts with it. To serve the network without any would open
// the hub to everybody, so only the local socket is served until there is an account again. What
// else of them is there may be old, so nobody is let in by it.
bool IsLocked(const store::Store& store) {
  return store.DocumentsLost() || store.Document(store::Store::kLostMark);
}

// Random, once, and kept for ever.
std::string IdentityOf(store::Store& store) {
  if (const auto kept = store.Document(kIdentity)) return *kept;
  std::random_device random;
  std::string id;
  for (int digit = 0; digit < 8; ++digit) id += "0123456789abcdef"[random() % 16];
  store.PutDocument(kIdentity, id);
  return id;
}

std::string HostName() {
  std::array<char, 256> name{};
  if (gethostname(name.data(), name.size() - 1) != 0 || name[0] == '\0') return "bus";
  return name.data();
}

// Where settings name no virtual bus: that of the installed service, while it runs. So a trial
// needs no settings.
std::string ControlOf(const settings::Settings& settings) {
  constexpr char kInstalled[] = "/run/qelm-bus/control";
  if (!settings.virtual_bus.control.empty()) return settings.virtual_bus.control;
  return ::access(kInstalled, F_OK) == 0 ? kInstalled : "";
}

// The bus has the host's name until somebody gives it one.
model::Settings FileOf(const settings::Settings& settings, const std::string& control) {
  model::Settings file = settings.names;
  if (file.bus_name.empty()) file.bus_name = HostName();
  file.is_virtual = !control.empty();
  return file;
}

// A socket that systemd has opened for us.
std::optional<int> InheritedSocket() {
  return sd_listen_fds(1) == 1 ? std::optional(SD_LISTEN_FDS_START) : std::nullopt;
}

http::ServerOptions ServerOptionsOf(const settings::Settings& settings, const Places& places,
                                    bool is_locked) {
  http::ServerOptions options;
  options.listen.clear();
  for (const settings::Endpoint& endpoint : settings.http.listen)
    if (!is_locked) options.listen.push_back(ToText(endpoint));
  options.socket = places.socket;
  options.can_be_without_socket = !places.is_socket_given;
  options.socket_descriptor = InheritedSocket();
  options.certificate = settings.http.certificate;
  options.key = settings.http.key;
  options.insecure_http = settings.http.insecure_http;
  options.hosts = settings.http.hosts;
  options.proxies = settings.http.proxies;
  options.page = places.page;
  options.max_connections = static_cast<size_t>(settings.http.max_connections);
  return options;
}

text::TextOptions TextOptionsOf(const settings::TextOptions& options, bool is_locked) {
  return {is_locked ? "" : options.listen, options.ports};
}

mqtt::BrokerOptions BrokerOptionsOf(const settings::BrokerOptions& options) {
  return {{options.host, options.port, options.user, options.password_file, options.ca,
           options.certificate, options.key},
          options.name,
          options.boards};
}

mqtt::Discovery DiscoveryOf(const settings::BrokerOptions& options) {
  static_assert(static_cast<int>(settings::Discovery::kOff) ==
                static_cast<int>(mqtt::Discovery::kOff));
  return static_cast<mqtt::Discovery>(options.discovery);
}

std::optional<std::chrono::microseconds> WatchdogPeriod() {
  uint64_t microseconds = 0;
  if (sd_watchdog_enabled(0, &microseconds) <= 0) return std::nullopt;
  return std::chrono::microseconds(microseconds / 2);
}

// The service manager waits for the READY that follows this moment.
void NotifyReloading() {
  const auto now = std::chrono::steady_clock::now().time_since_epoch();
  const auto microseconds = std::chrono::duration_cast<std::chrono::microseconds>(now).count();
  const std::string text = "RELOADING=1\nMONOTONIC_USEC=" + std::to_string(microseconds);
  sd_notify(0, text.c_str());
}

// What a level is in the history; nothing for what has no number.
std::optional<double> Number(const model::Value& value) {
  if (const bool* line = std::get_if<bool>(&value)) return *line ? 1 : 0;
  if (const double* number = std::get_if<double>(&value)) return *number;
  return std::nullopt;
}

}  // namespace

Hub::Hub(const settings::Settings& settings, Places places)
    : settings_(settings),
      places_(std::move(places)),
      store_(context_, settings_.store, clock_),
      is_locked_(IsLocked(store_)),
      control_(ControlOf(settings_)),
      bus_(IdentityOf(store_), QELM_VERSION),
      outputs_(store_.Document(kOutputs).value_or("")),
      access_(context_, clock_, is_locked_ ? std::nullopt : store_.Document(kAccess),
              {.keep = [this](std::string text) { KeepAccess(std::move(text)); },
               .ended = [this](const std::string& session) { server_.EndSession(session); },
               .token_ended =
                   [this](const std::string& name) {
                     server_.EndToken(name);
                     text_ports_.EndToken(name);
                   },
               .login_needed =
                   [this] {
                     server_.EndNameless();
                     text_ports_.EndNameless();
                   }}),
      link_(
          context_, settings_.daemon, bus_,
          {.report = [this](std::string_view line) { text_ports_.ShowReport(line); },
           .monitored = [this](std::string_view line) { text_ports_.ShowMonitored(line); },
           .asked = [this](const protocol::WriteBlock& block) { Keep(block); },
           .forgotten = [this](uint8_t address, uint8_t block) { Forget(address, block); },
           .journal = [this](model::JournalEntry entry) { store_.AddJournal(std::move(entry)); }}),
      virtual_bus_(context_, control_),
      house_{.context = context_,
             .bus = bus_,
             .link = link_,
             .store = store_,
             .access = access_,
             .clock = clock_,
             .file = FileOf(settings_, control_),
             .virtual_bus = control_.empty() ? nullptr : &virtual_bus_},
      server_(house_, ServerOptionsOf(settings_, places_, is_locked_)),
      text_ports_(house_, TextOptionsOf(settings_.text, is_locked_)),
      broker_(house_, QELM_VERSION),
      home_assistant_(house_, broker_, QELM_VERSION),
      signals_(context_, SIGTERM, SIGINT, SIGHUP),
      watchdog_(context_),
      watchdog_period_(WatchdogPeriod()) {}

void Hub::Run() {
  ApplySettings(house_);
  bus_.Publish();
  bus_.Listen([this](const model::Change& change) { Record(change); });
  link_.Remember(outputs_.Blocks());
  server_.Start();
  text_ports_.Start();
  home_assistant_.Use(DiscoveryOf(settings_.broker));
  broker_.Start(BrokerOptionsOf(settings_.broker));
  link_.Start();
  AwaitSignal();
  TellWatchdog();
  for (const std::string& address : server_.Addresses())
    std::cerr << "qelm-hub: listening on " << address << '\n';
  if (const std::string trouble = store_.Trouble(); !trouble.empty())
    std::cerr << "qelm-hub: " << trouble << '\n';
  if (is_locked_)
    std::cerr << "qelm-hub: the accounts are lost or out of date; only " << places_.socket
              << " is served until there is one again and the hub was restarted\n";
  Journal("started");
  sd_notify(0, "READY=1");
  context_.run();
}

void Hub::Record(const model::Change& change) {
  const model::Time now = clock_.Now();
  for (const model::ChannelId& id : change.channels) {
    const model::Card* const card = bus_.At(id.address);
    if (card == nullptr || id.number >= card->channels.size()) continue;
    if (const auto number = Number(card->channels[id.number].value))
      store_.AddValue(id, now, *number);
  }
}

void Hub::Keep(const protocol::WriteBlock& block) {
  if (outputs_.Keep(block)) store_.PutDocument(kOutputs, outputs_.Document());
}

void Hub::Forget(uint8_t address, uint8_t block) {
  if (outputs_.Forget(address, block)) store_.PutDocument(kOutputs, outputs_.Document());
}

// A token alone is no account: what it takes the place of may have had some.
void Hub::KeepAccess(std::string text) {
  store_.PutDocument(kAccess, std::move(text));
  if (access_.HasAccounts())
    store_.RemoveDocument(store::Store::kLostMark);
  else if (is_locked_)
    store_.PutDocument(store::Store::kLostMark, "accounts were lost");
}

void Hub::Journal(std::string text) {
  model::JournalEntry entry;
  entry.time = clock_.Now();
  entry.kind = "hub";
  entry.text = std::move(text);
  store_.AddJournal(std::move(entry));
}

void Hub::Say(const std::string& text) {
  std::cerr << "qelm-hub: " << text << '\n';
  Journal(text);
}

void Hub::AwaitSignal() {
  signals_.async_wait([this](boost::system::error_code error, int signal) {
    if (error) return;
    if (signal != SIGHUP) return Stop();
    ReadSettingsAgain();
    AwaitSignal();
  });
}

// A file with errors changes nothing.
void Hub::ReadSettingsAgain() {
  NotifyReloading();
  const auto read = settings::Load(places_.settings_file, !places_.is_file_given);
  if (const auto* errors = std::get_if<settings::SettingsErrors>(&read)) {
    for (const settings::SettingsError& error : *errors)
      std::cerr << ToText(error, places_.settings_file) << '\n';
    Say("settings are not read again: the file has errors");
  } else {
    TakeAgain(std::get<settings::Settings>(read));
  }
  sd_notify(0, "READY=1");
}

// Names, units and the broker at once. What else has changed stays as it was at the start, so it is
// named each time.
void Hub::TakeAgain(const settings::Settings& fresh) {
  settings_.names = fresh.names;
  settings_.broker = fresh.broker;
  house_.file = FileOf(settings_, control_);
  ApplySettings(house_);
  broker_.Use(BrokerOptionsOf(settings_.broker));
  home_assistant_.Use(DiscoveryOf(settings_.broker));
  std::string keys;
  for (const std::string_view key : settings::RestartKeys(settings_, fresh)) {
    if (!keys.empty()) keys += ", ";
    keys += key;
  }
  Say("settings read again" + (keys.empty() ? "" : "; a restart is needed for " + keys));
}

void Hub::TellWatchdog() {
  if (!watchdog_period_) return;
  sd_notify(0, "WATCHDOG=1");
  watchdog_.expires_after(*watchdog_period_);
  watchdog_.async_wait([this](boost::system::error_code error) {
    if (!error) TellWatchdog();
  });
}

// Everybody is sent away; the context runs on until the last conversation has ended.
void Hub::Stop() {
  sd_notify(0, "STOPPING=1");
  Journal("stopped");
  watchdog_.cancel();
  home_assistant_.Stop();
  broker_.Stop();
  text_ports_.Stop();
  server_.Stop();
  link_.Stop();
  store_.Stop();
}

}  // namespace hub
