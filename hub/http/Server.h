// The web server of the hub: its listeners, and a conversation a connection.
//
// Loopback is served in plain, other addresses with TLS, or in plain where somebody said that it
// is meant. How many connections there are, how long they may take and how much they may send is
// bounded. One io_context, one thread.
#pragma once

#include <chrono>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "api/Api.h"
#include "http/Counters.h"

namespace hub::http {

struct ServerOptions {
  std::vector<std::string> listen{"127.0.0.1:5080", "[::1]:5080"};  // port 0: any that is free
  std::string socket = "/run/qelm-hub/hub.sock";                    // empty: none
  bool can_be_without_socket = false;    // where it cannot be had, and there is another address
  std::optional<int> socket_descriptor;  // the same, listening already
  std::string certificate;               // files; empty: none
  std::string key;
  bool insecure_http = false;  // plain for others than loopback
  std::vector<std::string> hosts;
  std::vector<std::string> proxies;
  std::string page;  // folder of the page; empty: none
  size_t max_connections = 256;
  std::chrono::milliseconds look_every{1000};  // for what is late
};

class Server {
 public:
  using Collector = std::function<std::string()>;  // further text for the monitoring system

  Server(api::House& house, ServerOptions options);
  ~Server();
  Server(const Server&) = delete;
  Server& operator=(const Server&) = delete;

  void Collect(Collector collector);

  // Throws std::runtime_error where it cannot listen, or must not.
  void Start();

  // Closes everything. The io_context has to run on until all conversations have ended; the
  // server and the house are still there then.
  void Stop();

  // WebSockets that were opened with it end; or over the network without a login.
  void EndSession(const std::string& session);
  void EndToken(const std::string& token);
  void EndNameless();

  // What it listens on, with the port that the system has chosen.
  std::vector<std::string> Addresses() const;

  Counters Count() const;

 private:
  struct Parts;
  std::unique_ptr<Parts> parts_;
};

}  // namespace hub::http
