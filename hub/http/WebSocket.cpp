#include "http/WebSocket.h"

#include <boost/asio/post.hpp>
#include <boost/asio/redirect_error.hpp>
#include <boost/beast/core/bind_handler.hpp>
#include <boost/beast/core/flat_buffer.hpp>
#include <boost/beast/websocket/stream.hpp>

#include "http/Limits.h"

namespace hub::http {

namespace asio = boost::asio;
namespace beast = boost::beast;
using boost::system::error_code;

// Both are looked up by the WebSocket below, when the conversation is over.
template <class Handler>
void async_teardown(beast::role_type, Stream& stream, Handler&& handler) {
  stream.HalfClose();
  asio::post(stream.get_executor(),
             beast::bind_front_handler(std::forward<Handler>(handler), error_code()));
}

void beast_close_socket(Stream& stream) { stream.Close(); }

namespace {

constexpr std::chrono::seconds kCloseTime{5};

// A long message leaves no long buffer behind.
constexpr size_t kKeptBuffer = 4096;

using HandshakeRequest = beast::http::request<beast::http::empty_body>;

HandshakeRequest ToHandshake(const Request& request) {
  HandshakeRequest handshake{beast::http::string_to_verb(request.method), request.path, 11};
  for (const Field& field : request.fields) handshake.insert(field.name, field.value);
  return handshake;
}

}  // namespace

struct WebSocket::Parts {
  explicit Parts(std::shared_ptr<Stream> line) : stream(std::move(line)), socket(*stream) {}

  void Heard() {
    heard = stream->Clock().Steady();
    if (!is_closing) stream->AllowFor(kSilentTime);
  }

  std::shared_ptr<Stream> stream;
  beast::websocket::stream<Stream&, false> socket;
  beast::flat_buffer buffer{kMessageMost + kKeptBuffer};
  model::SteadyTime heard;
  bool is_pinging = false;
  bool is_closing = false;
};

WebSocket::WebSocket(std::shared_ptr<Stream> stream)
    : parts_(std::make_unique<Parts>(std::move(stream))) {
  using beast::websocket::stream_base;
  auto& socket = parts_->socket;
  socket.read_message_max(kMessageMost);
  socket.auto_fragment(false);
  socket.text(true);
  socket.set_option(stream_base::decorator([](beast::websocket::response_type& response) {
    response.set(beast::http::field::server, "qelm-hub");
  }));
  socket.control_callback([parts = parts_.get()](auto, auto) { parts->Heard(); });
  parts_->Heard();
}

WebSocket::~WebSocket() = default;

model::SteadyTime WebSocket::LastHeard() const { return parts_->heard; }

asio::awaitable<bool> WebSocket::Accept(Request request) {
  const HandshakeRequest handshake = ToHandshake(request);
  error_code error;
  co_await parts_->socket.async_accept(handshake, asio::redirect_error(asio::use_awaitable, error));
  co_return !error;
}

asio::awaitable<std::optional<std::string>> WebSocket::Read() {
  Parts& parts = *parts_;
  error_code error;
  co_await parts.socket.async_read(parts.buffer, asio::redirect_error(asio::use_awaitable, error));
  if (error) co_return std::nullopt;
  parts.Heard();
  if (!parts.socket.got_text()) {
    Close(CloseCode::kNotText, "text only");
    co_return std::nullopt;
  }
  const auto bytes = parts.buffer.cdata();
  std::string text(static_cast<const char*>(bytes.data()), bytes.size());
  parts.buffer.clear();
  if (parts.buffer.capacity() > kKeptBuffer) parts.buffer.shrink_to_fit();
  co_return text;
}

asio::awaitable<bool> WebSocket::Write(std::string_view text) {
  const auto bytes = asio::buffer(text);
  error_code error;
  co_await parts_->socket.async_write(bytes, asio::redirect_error(asio::use_awaitable, error));
  co_return !error;
}

// One at a time: a ping that cannot go out is not followed by others.
void WebSocket::Ping() {
  if (parts_->is_pinging || parts_->is_closing) return;
  parts_->is_pinging = true;
  parts_->socket.async_ping(
      {}, [self = shared_from_this()](const error_code&) { self->parts_->is_pinging = false; });
}

void WebSocket::Close(CloseCode code, std::string_view reason) {
  if (parts_->is_closing) return;
  parts_->is_closing = true;
  parts_->stream->AllowFor(kCloseTime);
  const beast::websocket::close_reason why(static_cast<beast::websocket::close_code>(code), reason);
  parts_->socket.async_close(why, [self = shared_from_this()](const error_code&) { self->Cut(); });
}

void WebSocket::Cut() { parts_->stream->Close(); }

}  // namespace hub::http
