// A web server on loopback and a Unix socket, before a bus that the test moves and a table of
// methods that is the test's own. Time stands still until the test lets it pass.
#pragma once

#include <gtest/gtest.h>

#include <atomic>
#include <boost/asio/io_context.hpp>
#include <boost/asio/post.hpp>
#include <functional>
#include <future>
#include <memory>
#include <optional>
#include <string>
#include <thread>

#include "WebClient.h"
#include "access/Access.h"
#include "api/Api.h"
#include "http/Server.h"
#include "kit/TempDir.h"

namespace hub::http {

class StandClock : public model::Clock {
 public:
  model::Time Now() const override { return model::Time(std::chrono::seconds(1'795'262'400)); }
  model::SteadyTime Steady() const override {
    return model::SteadyTime(std::chrono::hours(1)) + std::chrono::milliseconds(passed_.load());
  }
  void Pass(std::chrono::milliseconds time) { passed_ += time.count(); }
  std::chrono::milliseconds Passed() const { return std::chrono::milliseconds(passed_.load()); }

 private:
  std::atomic<int64_t> passed_{0};
};

class Stand {
 public:
  explicit Stand(const std::function<void(ServerOptions&)>& change = {});
  ~Stand();

  // On the thread of the server; what it gives comes back.
  template <class Work>
  auto Run(Work work) -> decltype(work());

  WebClient Connect() { return WebClient::ToPort(port); }
  WebClient ConnectLocally() { return WebClient::ToPath(folder.Path("hub.sock")); }
  // A WebSocket that has subscribed; its first answer is read.
  WebClient Subscribe();

  // A level of the analogue input F.3, published.
  void Move(unsigned value);
  // A key goes down and up, published: two events.
  void PressKey();
  uint64_t Sequence();

  std::string AddAccount();  // "operator"; the cookie of its first session
  void ChangePassword();     // of "operator"
  std::string AddToken(const std::string& name, access::Role role);
  void Stop();

  StandClock clock;
  TempDir folder;
  boost::asio::io_context context;
  model::Bus bus{"3f9a21c0"};
  link::Link link;
  store::Store store;
  access::Access access;
  api::House house;
  std::unique_ptr<Server> server;
  int port = 0;

 private:
  std::thread thread_;
};

template <class Work>
auto Stand::Run(Work work) -> decltype(work()) {
  std::packaged_task<decltype(work())()> task(std::move(work));
  auto result = task.get_future();
  boost::asio::post(context, [&task] { task(); });
  return result.get();
}

}  // namespace hub::http
