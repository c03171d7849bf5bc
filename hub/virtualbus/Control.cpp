#include "virtualbus/Control.h"

#include <boost/asio/buffer.hpp>
#include <boost/asio/local/stream_protocol.hpp>
#include <boost/asio/read_until.hpp>
#include <boost/asio/redirect_error.hpp>
#include <boost/asio/steady_timer.hpp>
#include <boost/asio/use_awaitable.hpp>
#include <boost/asio/write.hpp>
#include <memory>
#include <string_view>
#include <utility>

namespace hub::virtualbus {

namespace asio = boost::asio;
using asio::local::stream_protocol;
using boost::system::error_code;

namespace {

constexpr size_t kLongestLine = 4096;
constexpr size_t kMostLines = 1000;  // of all answers together
constexpr std::string_view kDone = "ok";
constexpr std::string_view kError = "error: ";

// Whoever waits for the socket sees it closed when the time is over.
struct Conversation {
  explicit Conversation(asio::io_context& context) : socket(context), end(context) {}

  stream_protocol::socket socket;
  asio::steady_timer end;
};

void EndAfter(const std::shared_ptr<Conversation>& talk, std::chrono::milliseconds patience) {
  talk->end.expires_after(patience);
  talk->end.async_wait([talk](error_code cancelled) {
    error_code ignored;
    if (!cancelled) talk->socket.close(ignored);
  });
}

asio::awaitable<std::optional<std::string>> ReadLine(Conversation& talk, std::string& unread) {
  error_code error;
  auto token = asio::redirect_error(asio::use_awaitable, error);
  auto buffer = asio::dynamic_buffer(unread, kLongestLine);
  const size_t length = co_await asio::async_read_until(talk.socket, buffer, '\n', token);
  if (error) co_return std::nullopt;
  std::string line = unread.substr(0, length - 1);
  unread.erase(0, length);
  co_return line;
}

asio::awaitable<std::optional<std::vector<Answer>>> ReadAnswers(Conversation& talk, size_t count) {
  std::vector<Answer> answers(1);
  std::string unread;
  for (size_t lines = 0; lines < kMostLines; ++lines) {
    auto reading = ReadLine(talk, unread);
    std::optional<std::string> line = co_await std::move(reading);
    if (!line) co_return std::nullopt;
    const bool is_error = line->starts_with(kError);
    if (!is_error && *line != kDone) {
      answers.back().lines.push_back(std::move(*line));
      continue;
    }
    if (is_error) answers.back().error = line->substr(kError.size());
    if (answers.size() == count) co_return answers;
    answers.emplace_back();
  }
  co_return std::nullopt;
}

}  // namespace

asio::awaitable<std::optional<std::vector<Answer>>> Control::Ask(std::vector<std::string> orders) {
  if (path_.size() >= sizeof(sockaddr_un::sun_path)) co_return std::nullopt;
  std::string text;
  for (const std::string& order : orders) text += order + '\n';
  const auto talk = std::make_shared<Conversation>(context_);
  EndAfter(talk, patience_);
  error_code error;
  auto token = asio::redirect_error(asio::use_awaitable, error);
  const stream_protocol::endpoint place(path_);
  co_await talk->socket.async_connect(place, token);
  const auto bytes = asio::buffer(text);
  if (!error) co_await asio::async_write(talk->socket, bytes, token);
  std::optional<std::vector<Answer>> answers;
  if (!error) {
    auto reading = ReadAnswers(*talk, orders.size());
    answers = co_await std::move(reading);
  }
  talk->end.cancel();
  co_return answers;
}

}  // namespace hub::virtualbus
