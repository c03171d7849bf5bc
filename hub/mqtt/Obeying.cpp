#include "mqtt/Obeying.h"

#include <boost/asio/co_spawn.hpp>
#include <utility>
#include <variant>

#include "model/Fault.h"

namespace hub::mqtt {

namespace {

constexpr int kRetrySeconds = 1;

}  // namespace

void Obeying::Take(const Topics& topics, const Arrived& arrived) {
  const std::string& topic = arrived.message.topic;
  // Somebody has cleared a retained command.
  if (arrived.message.is_retained && arrived.size == 0) return;
  auto read = ReadCommand(topics, house_.bus, arrived);
  if (const auto* problem = std::get_if<api::Problem>(&read)) return Refuse(topic, *problem);
  if (under_way_ >= kMostUnderWay)
    return Refuse(topic, api::RetryLater(429, "too many commands wait", kRetrySeconds));
  const auto order = std::make_shared<Order>(Order{topic});
  for (Command& command : std::get<std::vector<Command>>(read)) {
    ++under_way_;
    boost::asio::co_spawn(house_.context, Run(std::move(command), order), model::EndOnFault{});
  }
}

boost::asio::awaitable<void> Obeying::Run(Command command, std::shared_ptr<Order> order) {
  access::Caller caller{.account = "broker",
                        .role = command.role,
                        .session = {},
                        .address = {},
                        .door = access::Door::kBroker};
  api::Request request{std::move(command.parameters), std::move(caller)};
  auto calling = api::Call(house_, *command.method, std::move(request));
  const api::Reply reply = co_await std::move(calling);
  --under_way_;
  const auto* const problem = std::get_if<api::Problem>(&reply.result);
  if (problem != nullptr && !std::exchange(order->has_failed, true))
    complain_(order->topic, *problem);
}

void Obeying::Refuse(const std::string& topic, const api::Problem& problem) {
  house_.traffic.Count(access::Door::kBroker, &problem, api::Traffic::Seconds(0));
  complain_(topic, problem);
}

}  // namespace hub::mqtt
