// The hub on a broker: tells the bus below qelm/NAME/, takes commands there, and says in the model
// how it stands. A broker that is gone, slow or unwilling costs nobody else anything.
//
// A connection of its own looks first who has the name: while another hub is online there, this one
// waits. Then a second one, which has a will, publishes. One io_context, one thread.
#pragma once

#include <boost/asio/awaitable.hpp>
#include <boost/asio/steady_timer.hpp>
#include <functional>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "api/Api.h"
#include "link/Backoff.h"
#include "mqtt/Client.h"
#include "mqtt/Neighbours.h"
#include "mqtt/Obeying.h"
#include "mqtt/Publisher.h"
#include "mqtt/States.h"

namespace hub::mqtt {

struct BrokerOptions {
  Server server;        // without a host: no broker
  std::string name;     // in topics; empty: that of the bus, as a topic can have it
  bool boards = false;  // listens to the other hubs
  bool operator==(const BrokerOptions&) const = default;
};

class Broker {
 public:
  using Sink = std::function<void(const Arrived& arrived)>;

  // The house outlives it; it outlives the bus's changes. `version` is the hub's own.
  Broker(api::House& house, std::string version);
  Broker(const Broker&) = delete;
  Broker& operator=(const Broker&) = delete;

  void Start(BrokerOptions options);
  void Use(BrokerOptions options);  // from now on
  void Stop();                      // says good-bye, within a second

  // For whoever has more to tell or to hear than the bus; before Start.
  //
  // Retained messages of others are levels of the publisher, like those of the bus: Keep, TakeBack,
  // and then Flush.
  Publisher& Outgoing() { return publisher_; }
  void Flush();
  const Topics& Names() const { return states_.Names(); }
  // What arrives there, which is none of this hub's commands.
  void Hear(std::string filter, Sink sink) { sinks_[std::move(filter)] = std::move(sink); }
  // After each connection, and so after each move to another name: the levels are being told.
  void WhenUp(std::function<void()> told) { up_.push_back(std::move(told)); }

 private:
  // How a connection went.
  struct Outcome {
    Ended end;
    bool was_up = false;
  };

  boost::asio::awaitable<void> Run();
  boost::asio::awaitable<Outcome> Attempt();
  boost::asio::awaitable<std::optional<Ended>> FindName(bool is_version_5);
  boost::asio::awaitable<Ended> Serve(bool is_version_5);
  boost::asio::awaitable<void> Pause(std::chrono::milliseconds time);

  void Take(const model::Change& change);
  void Dispatch(const Arrived& arrived);
  void CheckRival(const Arrived& arrived);
  void Open(Client& client);
  void SettleLeftovers();
  void Leave(bool moves);
  void TellRates();
  std::string WantedName() const;
  void Say(model::BrokerState state, std::string detail);
  void Journal(std::string text);

  api::House& house_;
  Publisher publisher_;
  States states_;
  Obeying obeying_;
  Neighbours neighbours_;
  BrokerOptions options_;
  std::map<std::string, Sink> sinks_;  // by filter
  std::vector<std::function<void()>> up_;
  link::Backoff refused_;
  link::Backoff away_;
  boost::asio::steady_timer pause_;
  boost::asio::steady_timer deadline_;  // for a good-bye
  boost::asio::steady_timer rates_;
  Client* client_ = nullptr;  // of the connection there is
  bool is_up_ = false;        // it publishes
  bool is_leaving_ = false;   // it is to end
  bool is_stopping_ = false;
  std::set<std::string> leftovers_;  // of an earlier time, below the name
  std::optional<api::Guest> guest_;
  model::SteadyTime minute_{};  // of the entries in the journal
  int entries_ = 0;             // in it
};

}  // namespace hub::mqtt
