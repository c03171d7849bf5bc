// The hub on a broker: tells the bus below qelm/NAME/, takes commands there, and says in the model
// how it stands. A broker that is gone, slow or unwilling costs nobody else anything.
//
// Before it publishes it looks who has the name: while another hub is online there it waits. One
// io_context, one thread.
#pragma once

#include <boost/asio/awaitable.hpp>
#include <boost/asio/steady_timer.hpp>
#include <cstdint>
#include <functional>
#include <memory>
#include <set>
#include <string>
#include <vector>

#include "api/Api.h"
#include "link/Backoff.h"
#include "model/Journal.h"
#include "mqtt/Client.h"
#include "mqtt/Publisher.h"
#include "mqtt/States.h"

namespace hub::mqtt {

struct BrokerOptions {
  Server server;     // without a host: no broker
  std::string name;  // in topics; empty: the name of the bus, as a topic can have it
  bool operator==(const BrokerOptions&) const = default;
};

class Broker {
 public:
  Broker(api::House& house, std::string version);
  Broker(const Broker&) = delete;
  Broker& operator=(const Broker&) = delete;

  void Use(BrokerOptions options);  // from now on; before, there is no broker
  void Stop();                      // says good-bye, within a second

  // For whoever has more to tell or to hear than the bus: before Use.
  //
  // Home Assistant's messages are levels of the publisher, like every other: Keep and TakeBack.
  Publisher& Outgoing() { return publisher_; }
  // Names may have moved: topics below this root are this hub's.
  const Topics& Names() const { return states_.Names(); }
  // What arrives there is given to the sink, and nobody else.
  void Hear(std::string filter, std::function<void(const Arrived&)> sink);
  // After each connection, when the bus's own levels are queued; and after each move.
  void WhenUp(std::function<void()> told) { up_.push_back(std::move(told)); }
  void Flush();  // sends what was given to the publisher

 private:
  Publisher publisher_;
  States states_;
  std::vector<std::function<void()>> up_;
};

}  // namespace hub::mqtt
