// Wakes one coroutine that waits for news. Raised while nobody waits, it is kept; raised twice, it
// counts once. One thread.
#pragma once

#include <boost/asio/awaitable.hpp>
#include <boost/asio/redirect_error.hpp>
#include <boost/asio/steady_timer.hpp>
#include <boost/asio/use_awaitable.hpp>
#include <utility>

namespace hub::http {

class Signal {
 public:
  explicit Signal(const boost::asio::any_io_executor& executor)
      : timer_(executor, boost::asio::steady_timer::time_point::max()) {}

  void Raise() {
    is_raised_ = true;
    timer_.cancel();
  }

  boost::asio::awaitable<void> Wait() {
    boost::system::error_code cancelled;
    while (!std::exchange(is_raised_, false))
      co_await timer_.async_wait(
          boost::asio::redirect_error(boost::asio::use_awaitable, cancelled));
  }

 private:
  boost::asio::steady_timer timer_;
  bool is_raised_ = false;
};

}  // namespace hub::http
