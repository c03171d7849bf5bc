#include "link/Sessions.h"

#include <algorithm>
#include <boost/asio/experimental/awaitable_operators.hpp>
#include <boost/asio/redirect_error.hpp>
#include <boost/asio/steady_timer.hpp>
#include <boost/asio/use_awaitable.hpp>
#include <utility>

namespace hub::link {

namespace asio = boost::asio;
using protocol::Port;

namespace {

// A free port greets 3 s after it listens, and 7 s after its last client has left.
constexpr std::chrono::seconds kGreetingPatience{12};

// After that: another port may be the one that is held.
constexpr std::chrono::seconds kNextLook{1};

}  // namespace

Sessions::Sessions(asio::any_io_executor executor, std::string host, std::array<uint16_t, 3> ports,
                   Sinks sinks)
    : executor_(std::move(executor)),
      host_(std::move(host)),
      ports_(ports),
      sinks_(std::move(sinks)) {}

asio::awaitable<void> Sessions::Run(asio::awaitable<void> also) {
  using namespace asio::experimental::awaitable_operators;
  for (const protocol::PortText& each : protocol::kPorts)
    sessions_[static_cast<size_t>(each.port)] =
        std::make_unique<Session>(executor_, each.port, sinks_.lines);
  auto any = RunOne(0) || RunOne(1) || RunOne(2) || WatchGreetings() || std::move(also);
  co_await std::move(any);
  Close();
}

asio::awaitable<void> Sessions::RunOne(size_t index) {
  Session::Endpoints endpoints = co_await Resolve(ports_[index]);
  if (!endpoints.empty()) co_await sessions_[index]->Run(std::move(endpoints));
}

asio::awaitable<Session::Endpoints> Sessions::Resolve(uint16_t port) {
  boost::system::error_code error;
  const auto address = asio::ip::make_address(host_, error);
  Session::Endpoints endpoints;
  if (!error) {
    endpoints.emplace_back(address, port);
    co_return endpoints;
  }
  asio::ip::tcp::resolver resolver(executor_);
  auto token = asio::redirect_error(asio::use_awaitable, error);
  const std::string service = std::to_string(port);
  const auto found = co_await resolver.async_resolve(host_, service, token);
  for (const auto& entry : found) endpoints.push_back(entry.endpoint());
  co_return endpoints;
}

// Goes on for ever: a port that does not greet is no reason to leave the queue before it.
asio::awaitable<void> Sessions::WatchGreetings() {
  boost::system::error_code cancelled;
  auto token = asio::redirect_error(asio::use_awaitable, cancelled);
  asio::steady_timer timer(executor_, kGreetingPatience);
  co_await timer.async_wait(token);
  while (!cancelled) {
    const auto held =
        std::ranges::find_if(sessions_, [](const auto& session) { return session->IsHeld(); });
    if (held != sessions_.end()) sinks_.waiting(static_cast<Port>(held - sessions_.begin()));
    if (AreGreeted())
      timer.expires_at(asio::steady_timer::time_point::max());
    else
      timer.expires_after(kNextLook);
    co_await timer.async_wait(token);
  }
}

bool Sessions::AreGreeted() const {
  return std::ranges::all_of(sessions_, [](const auto& each) { return each && each->IsGreeted(); });
}

void Sessions::Write(Port port, std::string_view text) {
  const auto& session = sessions_[static_cast<size_t>(port)];
  if (session) session->Write(text);
}

void Sessions::Close() {
  for (const auto& session : sessions_)
    if (session) session->Close();
}

}  // namespace hub::link
