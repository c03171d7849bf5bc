// The three sessions with the daemon: attempted, greeted and lost together.
//
// One that ends takes the others with it, since a port that is left open keeps the hub's own next
// attempt out. A port that is held by another client greets nobody; its session waits for the end
// of the other one, which ends it too. Owned by the link; one thread.
#pragma once

#include <array>
#include <boost/asio/any_io_executor.hpp>
#include <boost/asio/awaitable.hpp>
#include <functional>
#include <memory>
#include <string>

#include "link/Session.h"

namespace hub::link {

class Sessions {
 public:
  struct Sinks {
    Session::Sink lines;
    // For the first one that is connected and not greeted; each second from 12 s on.
    std::function<void(protocol::Port port)> waiting;
  };

  Sessions(boost::asio::any_io_executor executor, std::string host, std::array<uint16_t, 3> ports,
           Sinks sinks);

  // One attempt, and what comes of it; `also` goes on beside it, and is cancelled at the end.
  boost::asio::awaitable<void> Run(boost::asio::awaitable<void> also);

  bool AreGreeted() const;
  void Write(protocol::Port port, std::string_view text);
  void Close();

 private:
  boost::asio::awaitable<void> RunOne(size_t index);
  boost::asio::awaitable<void> WatchGreetings();
  boost::asio::awaitable<Session::Endpoints> Resolve(uint16_t port);

  boost::asio::any_io_executor executor_;
  std::string host_;
  std::array<uint16_t, 3> ports_;  // by protocol::Port
  Sinks sinks_;
  std::array<std::unique_ptr<Session>, 3> sessions_;
};

}  // namespace hub::link
