// One accepted connection as bytes: TCP, TLS over TCP or a Unix socket behind one type, so that
// whatever works on it is compiled once. Reads and writes as the streams of Asio do.
//
// Whoever talks on it sets the time by which it must have got further; the list of all streams
// looks from time to time, and closes what is late. One thread.
#pragma once

#include <boost/asio/generic/stream_protocol.hpp>
#include <boost/asio/ssl/stream.hpp>
#include <boost/asio/use_awaitable.hpp>
#include <memory>
#include <optional>
#include <set>
#include <utility>

#include "http/Message.h"
#include "http/Places.h"
#include "model/Clock.h"

namespace hub::http {

class Stream;

// All streams that are open; each keeps it alive, and has its place.
class Streams {
 public:
  Streams(const model::Clock& clock, Places places) : clock_(clock), places_(std::move(places)) {}
  ~Streams() = default;
  Streams(const Streams&) = delete;
  Streams& operator=(const Streams&) = delete;

  Place PlaceFor(const Peer& peer) const { return places_.For(peer); }
  const model::Clock& Clock() const { return clock_; }
  void CloseLate();
  void CloseAll();

 private:
  friend class Stream;

  const model::Clock& clock_;
  Places places_;
  std::set<Stream*> streams_;
};

class Stream {
 public:
  using Socket = boost::asio::generic::stream_protocol::socket;
  using executor_type = Socket::executor_type;

  // `tls` is null for a plain connection.
  Stream(std::shared_ptr<Streams> streams, Socket socket, Peer peer,
         boost::asio::ssl::context* tls);
  ~Stream();
  Stream(const Stream&) = delete;
  Stream& operator=(const Stream&) = delete;

  const Peer& OtherEnd() const { return peer_; }
  const model::Clock& Clock() const { return streams_->clock_; }

  // From now on; a new time takes the place of the old one.
  void AllowFor(std::chrono::seconds time) { deadline_ = Clock().Steady() + time; }
  bool IsLate() const { return Clock().Steady() >= deadline_; }

  boost::asio::awaitable<bool> ShakeHands();  // of TLS; at once where there is none

  void HalfClose();  // nothing more goes out
  void Close();      // whoever waits on it gets an error

  // Never more than so much waits in the kernel for the other end.
  void KeepOutputSmall(int bytes);

  executor_type get_executor() { return socket_.get_executor(); }

  template <class Buffers, class Token>
  auto async_read_some(const Buffers& buffers, Token&& token) {
    if (tls_) return tls_->async_read_some(buffers, std::forward<Token>(token));
    return socket_.async_read_some(buffers, std::forward<Token>(token));
  }

  template <class Buffers, class Token>
  auto async_write_some(const Buffers& buffers, Token&& token) {
    if (tls_) return tls_->async_write_some(buffers, std::forward<Token>(token));
    return socket_.async_write_some(buffers, std::forward<Token>(token));
  }

 private:
  std::shared_ptr<Streams> streams_;
  Socket socket_;
  std::optional<boost::asio::ssl::stream<Socket&>> tls_;
  Peer peer_;
  model::SteadyTime deadline_ = model::SteadyTime::max();
};

}  // namespace hub::http
