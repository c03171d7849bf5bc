#include "http/HttpLine.h"

#include <array>
#include <boost/asio/redirect_error.hpp>
#include <boost/asio/write.hpp>
#include <boost/beast/core/flat_buffer.hpp>
#include <boost/beast/http/parser.hpp>
#include <boost/beast/http/read.hpp>
#include <boost/beast/http/string_body.hpp>
#include <chrono>
#include <ctime>

#include "http/Limits.h"

namespace hub::http {

namespace asio = boost::asio;
namespace beast = boost::beast;
using boost::system::error_code;
using Parser = beast::http::request_parser<beast::http::string_body>;

namespace {

std::string DateOf(std::time_t now) {
  std::tm parts{};
  gmtime_r(&now, &parts);
  std::array<char, 32> text{};
  const size_t size = std::strftime(text.data(), text.size(), "%a, %d %b %Y %H:%M:%S GMT", &parts);
  return {text.data(), size};
}

// What is no error of HTTP is one of the network: nobody is there to be answered.
Incoming FailureOf(const error_code& why) {
  using beast::http::error;
  const bool is_gone = why == error::end_of_stream || why == error::partial_message ||
                       why.category() != beast::http::make_error_code(error::body_limit).category();
  if (is_gone) return Ended{};
  if (why == error::header_limit || why == error::buffer_overflow) return Malformed{431};
  if (why == error::body_limit) return Malformed{413};
  return Malformed{400};
}

std::string ToText(beast::string_view text) { return {text.data(), text.size()}; }

// Whatever is named in full ("http://elsewhere/") was meant for a proxy.
bool TakeTarget(std::string target, Request& request) {
  if (target == "*" && request.method == "OPTIONS") target = "/";
  if (!target.starts_with('/')) return false;
  const size_t question = std::min(target.find('?'), target.size());
  request.path = target.substr(0, question);
  request.query = target.substr(std::min(question + 1, target.size()));
  return true;
}

// All but the body. What a client sends behind that is no header: no proxy has looked at it.
Incoming ToRequest(const Parser::value_type& message, const Peer& peer) {
  Request request;
  request.method = ToText(message.method_string());
  if (!TakeTarget(ToText(message.target()), request)) return Malformed{400};
  for (const auto& field : message)
    request.fields.push_back({ToText(field.name_string()), ToText(field.value())});
  request.keep_alive = message.keep_alive();
  const auto upgrade = request.Find("Upgrade");
  request.is_upgrade = upgrade && IsSameName(*upgrade, "websocket");
  request.peer = peer;
  return request;
}

}  // namespace

struct HttpLine::Parts {
  explicit Parts(Stream& line) : stream(line) {}

  asio::awaitable<bool> WaitForBytes();
  asio::awaitable<bool> AgreeToBody(const Parser& parser);

  Stream& stream;
  // A line without an end stays in it: more than the header may have, less than costs anything.
  beast::flat_buffer buffer{2 * kHeaderMost};
  bool is_first = true;
};

HttpLine::HttpLine(Stream& stream) : parts_(std::make_unique<Parts>(stream)) {}

HttpLine::~HttpLine() = default;

bool HttpLine::HasMore() const { return parts_->buffer.size() != 0; }

// The time for a header begins with its first byte.
asio::awaitable<bool> HttpLine::Parts::WaitForBytes() {
  stream.AllowFor(is_first ? kHeaderTime : kIdleTime);
  is_first = false;
  if (buffer.size() != 0) co_return true;
  buffer.shrink_to_fit();
  const auto room = buffer.prepare(1024);
  error_code error;
  const size_t count =
      co_await stream.async_read_some(room, asio::redirect_error(asio::use_awaitable, error));
  buffer.commit(count);
  co_return !error;
}

// Some clients send a long body only when they are asked for it.
asio::awaitable<bool> HttpLine::Parts::AgreeToBody(const Parser& parser) {
  if (parser.get()[beast::http::field::expect] != "100-continue") co_return true;
  const std::string_view text = "HTTP/1.1 100 Continue\r\n\r\n";
  const auto bytes = asio::buffer(text);
  error_code error;
  co_await asio::async_write(stream, bytes, asio::redirect_error(asio::use_awaitable, error));
  co_return !error;
}

asio::awaitable<Incoming> HttpLine::Read() {
  Stream& stream = parts_->stream;
  Parser parser;
  parser.header_limit(kHeaderMost);
  parser.body_limit(kBodyMost);
  const bool has_bytes = co_await parts_->WaitForBytes();
  if (!has_bytes) co_return Ended{};
  error_code error;
  stream.AllowFor(kHeaderTime);
  co_await beast::http::async_read_header(stream, parts_->buffer, parser,
                                          asio::redirect_error(asio::use_awaitable, error));
  if (error) co_return FailureOf(error);
  Incoming incoming = ToRequest(parser.get(), stream.OtherEnd());
  auto* const request = std::get_if<Request>(&incoming);
  if (request == nullptr) co_return incoming;
  if (!parser.is_done()) {
    stream.AllowFor(kBodyTime);
    const bool agreed = co_await parts_->AgreeToBody(parser);
    if (!agreed) co_return Ended{};
    co_await beast::http::async_read(stream, parts_->buffer, parser,
                                     asio::redirect_error(asio::use_awaitable, error));
    if (error) co_return FailureOf(error);
  }
  request->body = std::move(parser.get().body());
  co_return incoming;
}

asio::awaitable<bool> HttpLine::Write(const Response& response, bool keep_alive,
                                      bool without_body) {
  Stream& stream = parts_->stream;
  const std::string date = DateOf(std::chrono::system_clock::to_time_t(stream.Clock().Now()));
  const std::string head = HeadOf(response, keep_alive, date);
  const std::string_view body = without_body ? std::string_view() : response.body;
  const std::array<asio::const_buffer, 2> bytes{asio::buffer(head), asio::buffer(body)};
  error_code error;
  stream.AllowFor(kAnswerTime);
  co_await asio::async_write(stream, bytes, asio::redirect_error(asio::use_awaitable, error));
  co_return !error;
}

asio::awaitable<void> HttpLine::Linger() {
  Stream& stream = parts_->stream;
  stream.HalfClose();
  stream.AllowFor(kLingerTime);
  std::array<char, 4096> passed_over;
  const auto room = asio::buffer(passed_over);
  error_code error;
  while (!error)
    co_await stream.async_read_some(room, asio::redirect_error(asio::use_awaitable, error));
}

}  // namespace hub::http
