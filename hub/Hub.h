// All of the hub, wired: what the link learns goes to the store and the doors, what the doors are
// asked goes through the table of methods to the link. One io_context, one thread.
#pragma once

#include <boost/asio/io_context.hpp>
#include <boost/asio/signal_set.hpp>
#include <boost/asio/steady_timer.hpp>
#include <chrono>
#include <optional>
#include <string>

#include "KeptOutputs.h"
#include "access/Access.h"
#include "api/Api.h"
#include "http/Server.h"
#include "link/Link.h"
#include "model/Bus.h"
#include "model/Clock.h"
#include "mqtt/Broker.h"
#include "mqtt/HomeAssistant.h"
#include "settings/Settings.h"
#include "store/Store.h"
#include "text/TextPorts.h"

namespace hub {

struct Places {
  std::string settings_file;   // read again on SIGHUP
  bool is_file_given = false;  // else all defaults hold where it is not there
  std::string socket = "/run/qelm-hub/hub.sock";
  bool is_socket_given = false;  // else the hub serves without one that it cannot have
  std::string page = "/usr/share/qelm-hub/page";
};

class Hub {
 public:
  // Opens the store and takes over what is kept. Throws std::runtime_error where accounts cannot
  // be read or a port is taken.
  Hub(const settings::Settings& settings, Places places);
  Hub(const Hub&) = delete;
  Hub& operator=(const Hub&) = delete;

  // Serves until SIGTERM or SIGINT.
  void Run();

 private:
  void Record(const model::Change& change);
  void Keep(const protocol::WriteBlock& block);
  void Forget(uint8_t address, uint8_t block);
  void KeepAccess(std::string text);
  void Journal(std::string text);
  void Say(const std::string& text);  // to the journal, and on standard error
  void AwaitSignal();
  void ReadSettingsAgain();
  void TakeAgain(const settings::Settings& fresh);
  void TellWatchdog();
  void Stop();

  boost::asio::io_context context_{1};
  model::Clock clock_;
  settings::Settings settings_;
  Places places_;
  store::Store store_;
  bool is_locked_;
  std::string control_;  // socket of the virtual bus; empty: the bus is a real one
  model::Bus bus_;
  KeptOutputs outputs_;
  access::Access access_;
  link::Link link_;
  virtualbus::Control virtual_bus_;
  api::House house_;
  http::Server server_;
  text::TextPorts text_ports_;
  mqtt::Broker broker_;
  mqtt::HomeAssistant home_assistant_;
  boost::asio::signal_set signals_;
  boost::asio::steady_timer watchdog_;
  std::optional<std::chrono::microseconds> watchdog_period_;
};

}  // namespace hub
