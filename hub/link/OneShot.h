// A value that one side gives once and the other waits for. Shared by both; one thread.
#pragma once

#include <boost/asio/awaitable.hpp>
#include <boost/asio/redirect_error.hpp>
#include <boost/asio/steady_timer.hpp>
#include <boost/asio/use_awaitable.hpp>
#include <optional>
#include <utility>

namespace hub::link {

template <class Value>
class OneShot {
 public:
  explicit OneShot(const boost::asio::any_io_executor& executor)
      : given_(executor, boost::asio::steady_timer::time_point::max()) {}

  // Only the first one counts.
  void Give(Value value) {
    if (value_) return;
    value_ = std::move(value);
    given_.cancel();
  }

  bool IsGiven() const { return value_.has_value(); }

  // Nothing where whoever waits was cancelled.
  boost::asio::awaitable<std::optional<Value>> Wait() {
    boost::system::error_code cancelled;
    auto token = boost::asio::redirect_error(boost::asio::use_awaitable, cancelled);
    if (!value_) co_await given_.async_wait(token);
    co_return value_;
  }

 private:
  std::optional<Value> value_;
  boost::asio::steady_timer given_;  // never expires: its cancellation wakes
};

}  // namespace hub::link
