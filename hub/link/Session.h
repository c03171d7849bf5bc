// The connection to one port of the daemon, from connecting to its end.
//
// What an earlier client left may come before the greeting: it is dropped, up to the greeting.
// Owned by Sessions; one thread.
#pragma once

#include <boost/asio/awaitable.hpp>
#include <boost/asio/ip/tcp.hpp>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "protocol/Greeting.h"

namespace hub::link {

class Session {
 public:
  // The lines of one read, from the greeting on, with the greeting.
  using Sink = std::function<void(protocol::Port port, std::vector<std::string> lines)>;
  using Endpoints = std::vector<boost::asio::ip::tcp::endpoint>;

  Session(const boost::asio::any_io_executor& executor, protocol::Port port, const Sink& sink)
      : port_(port), sink_(sink), socket_(executor) {}

  // Until the connection is refused or ends.
  boost::asio::awaitable<void> Run(Endpoints endpoints);

  // At once and whole, or the session is closed: so little is ever under way that a daemon that
  // reads has room for it.
  void Write(std::string_view text);
  void Close();

  bool IsGreeted() const { return is_greeted_; }
  bool IsHeld() const { return is_connected_ && !is_greeted_; }  // perhaps by another client

 private:
  std::vector<std::string> TakeGreeted(std::vector<std::string> lines);

  protocol::Port port_;
  const Sink& sink_;
  boost::asio::ip::tcp::socket socket_;
  bool is_connected_ = false;
  bool is_greeted_ = false;
};

}  // namespace hub::link
