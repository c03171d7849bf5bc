// Commands that came over the broker, on their way through the table of methods. Whoever sent one
// hears of it only where something is wrong with it. One thread.
#pragma once

#include <boost/asio/awaitable.hpp>
#include <functional>
#include <memory>
#include <string>

#include "api/Api.h"
#include "mqtt/Commands.h"

namespace hub::mqtt {

class Obeying {
 public:
  static constexpr size_t kMostUnderWay = 256;  // further ones are refused

  // Gets each answer that is an error.
  using Complain = std::function<void(const std::string& topic, const api::Problem& problem)>;

  Obeying(api::House& house, Complain complain) : house_(house), complain_(std::move(complain)) {}

  void Take(const Topics& topics, const Arrived& arrived);

 private:
  // The parts of one message: of several that fail, one is told.
  struct Order {
    std::string topic;
    bool has_failed = false;
  };

  boost::asio::awaitable<void> Run(Command command, std::shared_ptr<Order> order);
  void Refuse(const std::string& topic, const api::Problem& problem);

  api::House& house_;
  Complain complain_;
  size_t under_way_ = 0;
};

}  // namespace hub::mqtt
