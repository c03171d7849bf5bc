// A WebSocket: whole text messages in both directions on one stream. Whatever breaks the rules of
// the protocol, is not text or is too long ends it with the code that says so.
#pragma once

#include <boost/asio/awaitable.hpp>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "http/Message.h"
#include "http/Stream.h"

namespace hub::http {

enum class CloseCode : uint16_t {
  kGoingAway = 1001,
  kNotText = 1003,
  kNotAllowed = 1008,
  kTooSlow = 1013,
};

// One read and one write at a time; Ping and Close at any time. Kept by everybody who waits on it.
class WebSocket : public std::enable_shared_from_this<WebSocket> {
 public:
  explicit WebSocket(std::shared_ptr<Stream> stream);
  ~WebSocket();
  WebSocket(const WebSocket&) = delete;
  WebSocket& operator=(const WebSocket&) = delete;

  boost::asio::awaitable<bool> Accept(Request request);       // false: it was no proper handshake
  boost::asio::awaitable<std::optional<std::string>> Read();  // nothing: it is over
  boost::asio::awaitable<bool> Write(std::string_view text);  // kept by the caller; false: over

  void Ping();
  void Close(CloseCode code, std::string_view reason);  // and hard, when that takes too long
  void Cut();                                           // without a word

  // When a frame of any kind came last.
  model::SteadyTime LastHeard() const;

 private:
  struct Parts;
  std::unique_ptr<Parts> parts_;
};

}  // namespace hub::http
