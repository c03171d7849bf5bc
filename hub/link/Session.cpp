#include "link/Session.h"

#include <algorithm>
#include <array>
#include <boost/asio/connect.hpp>
#include <boost/asio/redirect_error.hpp>
#include <boost/asio/use_awaitable.hpp>
#include <utility>

#include "protocol/LineReader.h"

namespace hub::link {

namespace asio = boost::asio;

namespace {

// The longest that the daemon writes is an echo of one read.
constexpr size_t kLongestLine = 1024;
constexpr size_t kReadSize = 4096;

}  // namespace

asio::awaitable<void> Session::Run(Endpoints endpoints) {
  boost::system::error_code error;
  auto token = asio::redirect_error(asio::use_awaitable, error);
  co_await asio::async_connect(socket_, endpoints, token);
  if (error) co_return;
  is_connected_ = true;
  socket_.set_option(asio::ip::tcp::no_delay(true), error);
  socket_.set_option(asio::socket_base::keep_alive(true), error);
  socket_.non_blocking(true, error);

  // The console's answers are handed on item by item.
  using Marks = protocol::LineReader::ItemMarks;
  const bool is_console = port_ == protocol::Port::kCae;
  protocol::LineReader reader(kLongestLine, is_console ? Marks::kKeep : Marks::kDrop);
  std::array<char, kReadSize> bytes{};
  const auto buffer = asio::buffer(bytes);
  while (!error) {
    const size_t count = co_await socket_.async_read_some(buffer, token);
    if (error) break;
    std::vector<std::string> lines;
    reader.Take({bytes.data(), count},
                [&lines](std::string line) { lines.push_back(std::move(line)); });
    lines = TakeGreeted(std::move(lines));
    if (!lines.empty()) sink_(port_, std::move(lines));
  }
}

std::vector<std::string> Session::TakeGreeted(std::vector<std::string> lines) {
  if (is_greeted_) return lines;
  const auto greeting = std::ranges::find_if(lines, [this](std::string_view line) {
    if (line.starts_with('\r')) line.remove_prefix(1);
    return line == protocol::TextOf(port_).greeting;
  });
  is_greeted_ = greeting != lines.end();
  lines.erase(lines.begin(), greeting);
  return lines;
}

void Session::Write(std::string_view text) {
  boost::system::error_code error;
  const size_t count = socket_.write_some(asio::buffer(text), error);
  if (error || count < text.size()) Close();
}

void Session::Close() {
  boost::system::error_code ignored;
  socket_.close(ignored);
}

}  // namespace hub::link
