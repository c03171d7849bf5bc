// Requests in, answers out, on one stream: one after the other, within the limits of size and time.
#pragma once

#include <boost/asio/awaitable.hpp>
#include <memory>
#include <variant>

#include "http/Message.h"
#include "http/Stream.h"

namespace hub::http {

// Bytes that are no request, or too many of them: the status to answer with before the end.
struct Malformed {
  int status;
};

// The other end has gone, or took too long.
struct Ended {};

using Incoming = std::variant<Request, Malformed, Ended>;

class HttpLine {
 public:
  explicit HttpLine(Stream& stream);  // outlives it
  ~HttpLine();
  HttpLine(const HttpLine&) = delete;
  HttpLine& operator=(const HttpLine&) = delete;

  boost::asio::awaitable<Incoming> Read();

  // Kept by the caller. False when the other end did not take it.
  boost::asio::awaitable<bool> Write(const Response& response, bool keep_alive, bool without_body);

  // Passes over what still comes until the other end has gone, for a short time: whoever closes
  // with bytes unread takes the answer back.
  boost::asio::awaitable<void> Linger();

  // True when more has come than the request that was read last.
  bool HasMore() const;

 private:
  struct Parts;
  std::unique_ptr<Parts> parts_;
};

}  // namespace hub::http
