#include "link/ConsoleQueue.h"

#include <utility>

#include "protocol/IoCommand.h"

namespace hub::link {

using protocol::Answer;

namespace {

constexpr auto kNever = boost::asio::steady_timer::time_point::max();

// A line that asks many cards takes a second for each of them.
constexpr std::chrono::seconds kLongestAnswer{60};

}  // namespace

ConsoleQueue::ConsoleQueue(boost::asio::any_io_executor executor, Sinks sinks)
    : executor_(std::move(executor)),
      sinks_(std::move(sinks)),
      console_(NewConsole()),
      patience_(executor_, kNever) {}

protocol::Console ConsoleQueue::NewConsole() {
  return protocol::Console({
      .ready = sinks_.ready,
      .answer =
          [this](Answer answer) {
            const Request request = std::move(requests_.front());
            requests_.pop_front();
            patience_.expires_at(kNever);
            request.answer->Give(std::move(answer));
            SendNext();
          },
      .illegal = sinks_.illegal,
      .unexpected = [](const std::string&) {},
  });
}

boost::asio::awaitable<std::optional<Answer>> ConsoleQueue::Ask(std::string line) {
  const auto answer = std::make_shared<Given>(executor_);
  requests_.push_back({std::move(line), answer});
  SendNext();
  const auto given = co_await answer->Wait();
  co_return given.value_or(std::nullopt);
}

void ConsoleQueue::SendNext() {
  if (requests_.empty() || !console_.IsReady()) return;
  console_.Ask();
  patience_.expires_after(kLongestAnswer);
  sinks_.write(requests_.front().line + std::string(protocol::kLineEnd));
}

boost::asio::awaitable<void> ConsoleQueue::Run() {
  boost::system::error_code cancelled;
  auto token = boost::asio::redirect_error(boost::asio::use_awaitable, cancelled);
  do co_await patience_.async_wait(token);
  while (cancelled);
}

void ConsoleQueue::Take(std::string line) { console_.Take(std::move(line)); }

void ConsoleQueue::Abandon() {
  console_ = NewConsole();
  patience_.expires_at(kNever);
  for (const Request& request : std::exchange(requests_, {})) request.answer->Give(std::nullopt);
}

}  // namespace hub::link
