#include "client/Hub.h"

#include <boost/beast/core/buffers_to_string.hpp>
#include <boost/beast/core/flat_buffer.hpp>
#include <boost/beast/http.hpp>
#include <boost/beast/websocket/stream.hpp>
#include <boost/json/parse.hpp>
#include <boost/json/serialize.hpp>
#include <utility>

#include "base/Failure.h"
#include "base/Json.h"
#include "base/Text.h"
#include "client/Refusal.h"
#include "client/Wire.h"

namespace ctl {

namespace beast = boost::beast;
namespace http = boost::beast::http;
namespace json = boost::json;
namespace websocket = boost::beast::websocket;

namespace {

constexpr uint64_t kLongestAnswer = 256 * 1024 * 1024;  // a backup; a message of the feed too

// What a request says of the hub it is for: a name that is no host's has no place there.
std::string HostHeader(const Target& target) {
  if (target.host.empty()) return "localhost";
  const std::string url = NameOf(target);
  return url.substr(url.find("//") + 2);
}

template <typename Fields>
void AddHeaders(const Target& target, Fields& fields) {
  fields.set(http::field::user_agent, "qelmctl");
  if (!target.token.empty()) fields.set(http::field::authorization, "Bearer " + target.token);
}

std::string PathAt(const Target& target, const std::string& path) {
  constexpr std::string_view kApi = "/api";
  const bool is_of_board = path.starts_with("/api/cards") || path.starts_with("/api/channels");
  if (target.board.empty() || !is_of_board) return path;
  return "/api/boards/" + UrlEscape(target.board) + path.substr(kApi.size());
}

std::string Subscription(std::optional<int64_t> after) {
  const std::string params =
      after ? R"(,"params":{"after":)" + std::to_string(*after) + "}" : std::string();
  return R"({"jsonrpc":"2.0","id":1,"method":"live.subscribe")" + params + "}";
}

[[noreturn]] void FailReading(const Target& target, const Wire::Error& error) {
  if (error == boost::asio::error::timed_out)
    throw Failure(kUnreachable, NameOf(target) + ": no answer within " +
                                    std::to_string(target.patience.count()) + " s");
  throw Failure(kUnreachable, NameOf(target) + ": the connection ended (" + error.message() +
                                  "); is that qelm-hub, and does it run?");
}

}  // namespace

struct Hub::Line {
  explicit Line(const Target& target) : wire(target) {}

  Wire wire;
  beast::flat_buffer read;
};

Hub::Hub(Target target) : target_(std::move(target)) {}

Hub::~Hub() = default;

json::value ParseJson(const Target& target, const std::string& text) {
  boost::system::error_code error;
  json::value data = json::parse(text, error);
  if (error)
    throw Failure(kUnreachable, NameOf(target) + ": the answer is no JSON; is that qelm-hub?");
  return data;
}

Reply Hub::Try(std::string_view method, const std::string& path, std::string_view body) {
  const bool was_open = line_ != nullptr;
  try {
    return TryOnce(method, path, body);
  } catch (const Failure&) {
    line_.reset();
    // The hub may have closed a connection that was idle; a question that changes something is
    // not asked twice.
    if (!was_open || method != "GET") throw;
  }
  return TryOnce(method, path, body);
}

Reply Hub::TryOnce(std::string_view method, const std::string& path, std::string_view body) {
  if (!line_) line_ = std::make_unique<Line>(target_);
  http::request<http::string_body> request;
  request.method_string({method.data(), method.size()});
  request.target(PathAt(target_, path));
  request.set(http::field::host, HostHeader(target_));
  AddHeaders(target_, request);
  if (!body.empty()) request.set(http::field::content_type, "application/json");
  request.body() = body;
  request.prepare_payload();

  Wire::Error error;
  http::write(line_->wire, request, error);
  if (error) FailReading(target_, error);
  http::response_parser<http::string_body> parser;
  parser.body_limit(kLongestAnswer);
  http::read(line_->wire, line_->read, parser, error);
  if (error) FailReading(target_, error);
  const http::response<http::string_body>& response = parser.get();
  if (!response.keep_alive()) line_.reset();

  Reply reply{
      .status = static_cast<int>(response.result_int()), .text = response.body(), .data = {}};
  if (!reply.text.empty()) reply.data = ParseJson(target_, reply.text);
  return reply;
}

Reply Hub::Ask(std::string_view method, const std::string& path, std::string_view body) {
  Reply reply = Try(method, path, body);
  if (reply.status >= 400) throw Refusal(reply.status, reply.data, reply.text);
  return reply;
}

void Hub::Watch(std::optional<int64_t> after,
                const std::function<bool(const Reply& message)>& sink) {
  Wire wire(target_);
  websocket::stream<Wire&, false> feed(wire);
  feed.set_option(websocket::stream_base::decorator(
      [this](websocket::request_type& request) { AddHeaders(target_, request); }));
  feed.read_message_max(kLongestAnswer);
  websocket::response_type answer;
  Wire::Error error;
  feed.handshake(answer, HostHeader(target_), "/api/live", error);
  if (error == websocket::error::upgrade_declined) {
    const int status = static_cast<int>(answer.result_int());
    json::error_code no_json;
    throw Refusal(status, json::parse(answer.body(), no_json), answer.body());
  }
  if (error) FailReading(target_, error);
  feed.text(true);
  feed.write(boost::asio::buffer(Subscription(after)), error);
  wire.SetPatience(std::chrono::seconds(0));
  while (!error) {
    beast::flat_buffer buffer;
    feed.read(buffer, error);
    if (error) break;
    Reply message{.status = 200, .text = beast::buffers_to_string(buffer.data()), .data = {}};
    message.data = ParseJson(target_, message.text);
    const json::value& problem = At(At(message.data, "error"), "data");
    if (!At(message.data, "error").is_null())
      throw Refusal(static_cast<int>(NumberAt(problem, "status").value_or(0)), problem,
                    message.text);
    if (!sink(message)) return;
  }
  FailReading(target_, error);
}

}  // namespace ctl
