#include "http/Stream.h"

#include <boost/asio/ip/tcp.hpp>
#include <boost/asio/redirect_error.hpp>

namespace hub::http {

namespace asio = boost::asio;

// A stream that is closed stays in the list: it leaves when its conversation has ended.
void Streams::CloseLate() {
  for (Stream* const stream : streams_)
    if (stream->IsLate()) stream->Close();
}

void Streams::CloseAll() {
  for (Stream* const stream : streams_) stream->Close();
}

Stream::Stream(std::shared_ptr<Streams> streams, Socket socket, Peer peer, asio::ssl::context* tls)
    : streams_(std::move(streams)), socket_(std::move(socket)), peer_(std::move(peer)) {
  // Whoever waits for an answer of a hundred bytes does not wait for more of them.
  boost::system::error_code not_tcp;
  socket_.set_option(asio::ip::tcp::no_delay(true), not_tcp);
  if (tls != nullptr) tls_.emplace(socket_, *tls);
  streams_->streams_.insert(this);
  streams_->places_.Enter(peer_);
}

Stream::~Stream() {
  streams_->streams_.erase(this);
  streams_->places_.Leave(peer_);
}

asio::awaitable<bool> Stream::ShakeHands() {
  if (!tls_) co_return true;
  boost::system::error_code error;
  co_await tls_->async_handshake(asio::ssl::stream_base::server,
                                 asio::redirect_error(asio::use_awaitable, error));
  co_return !error;
}

void Stream::HalfClose() {
  boost::system::error_code ignored;
  socket_.shutdown(asio::socket_base::shutdown_send, ignored);
}

void Stream::Close() {
  boost::system::error_code ignored;
  socket_.close(ignored);
}

void Stream::KeepOutputSmall(int bytes) {
  boost::system::error_code ignored;
  socket_.set_option(asio::socket_base::send_buffer_size(bytes), ignored);
}

}  // namespace hub::http
