// A running link in the words of the tests: its io_context has a thread of its own, and what a
// test asks is done there.
#pragma once

#include <boost/asio/co_spawn.hpp>
#include <boost/asio/executor_work_guard.hpp>
#include <boost/asio/use_future.hpp>
#include <future>
#include <memory>
#include <optional>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include "kit/Wait.h"
#include "link/Link.h"

namespace hub::link {

class LinkDriver {
 public:
  explicit LinkDriver(LinkOptions options, const std::vector<protocol::WriteBlock>& asked = {},
                      const model::Settings& settings = {});
  ~LinkDriver();
  LinkDriver(const LinkDriver&) = delete;
  LinkDriver& operator=(const LinkDriver&) = delete;

  // What people do, and what becomes of it.
  Outcome Set(unsigned address, std::vector<Target> targets, Motion motion = {});
  Outcome Send(protocol::IoCommand command);
  std::optional<protocol::Lines> Ask(std::string line);
  std::future<Outcome> SetLater(unsigned address, std::vector<Target> targets, Motion motion = {});
  std::future<Outcome> SendLater(protocol::IoCommand command);
  std::future<std::optional<protocol::Lines>> AskLater(std::string line);

  // What everybody sees. Look does something with the bus on its own thread.
  template <class Function>
  auto Look(Function function) {
    std::packaged_task<decltype(function(bus_))()> task([&] { return function(bus_); });
    auto done = task.get_future();
    boost::asio::post(context_, [&task] { task(); });
    return done.get();
  }
  model::Daemon Daemon();
  model::AdapterState Adapter();
  std::optional<model::Channel> Channel(unsigned address, unsigned number);
  bool IsUp() { return Daemon().state == model::DaemonState::kUp; }
  bool WaitUp();  // with its version and its cards
  bool WaitDown();
  bool WaitValue(unsigned address, unsigned number, bool on);  // raw: a line's bit
  bool WaitJournal(const std::string& text);
  std::vector<std::string> Journal();
  std::vector<std::string> Monitored();
  std::vector<protocol::WriteBlock> Asked();   // as it was told to the store
  std::vector<protocol::WriteBlock> Stored();  // with what the hub knew from before
  bool IsFree();                               // no output is pending
  bool IsConsoleFull();
  Link::Counters Count();

 private:
  boost::asio::io_context context_{1};
  boost::asio::executor_work_guard<boost::asio::io_context::executor_type> work_;
  model::Bus bus_{"00c0ffee"};
  std::vector<std::string> journal_;
  std::vector<std::string> monitored_;
  std::vector<protocol::WriteBlock> remembered_;
  std::vector<protocol::WriteBlock> asked_;
  std::unique_ptr<Link> link_;
  std::jthread thread_;
};

}  // namespace hub::link
