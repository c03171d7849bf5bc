// Everybody's lines for the daemon's console, one at a time: the next goes when the answer to the
// one before it is complete. Owned by the link; one thread.
#pragma once

#include <boost/asio/any_io_executor.hpp>
#include <boost/asio/awaitable.hpp>
#include <deque>
#include <functional>
#include <memory>
#include <optional>
#include <string>

#include "link/OneShot.h"
#include "protocol/Console.h"

namespace hub::link {

class ConsoleQueue {
 public:
  static constexpr size_t kMostWaiting = 64;

  struct Sinks {
    std::function<void(std::string_view line)> write;  // with its end
    std::function<void(std::string command)> illegal;  // of the IO port
    std::function<void()> ready;                       // the first prompt has come
  };

  ConsoleQueue(boost::asio::any_io_executor executor, Sinks sinks);

  // The answer without the prompt, in a session. Nothing where the session ends before it.
  boost::asio::awaitable<std::optional<protocol::Answer>> Ask(std::string line);

  bool IsFull() const { return requests_.size() >= kMostWaiting; }  // for lines of somebody else

  boost::asio::awaitable<void> Run();  // ends when an answer does not come
  void Take(std::string line);         // a line that the daemon has written
  void Abandon();                      // the session has ended: the next one begins anew

 private:
  using Given = OneShot<std::optional<protocol::Answer>>;
  struct Request {
    std::string line;
    std::shared_ptr<Given> answer;
  };

  protocol::Console NewConsole();
  void SendNext();

  boost::asio::any_io_executor executor_;
  Sinks sinks_;
  protocol::Console console_;
  std::deque<Request> requests_;        // the first is asked while the console is not ready
  boost::asio::steady_timer patience_;  // for the answer that is awaited
};

}  // namespace hub::link
