// Messages that ask for something, as calls of methods. Nothing is done here; a topic is a row of
// a table. Pure.
#pragma once

#include <boost/json/object.hpp>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

#include "access/Role.h"
#include "api/Api.h"
#include "model/Bus.h"
#include "mqtt/Client.h"
#include "mqtt/Topics.h"

namespace hub::mqtt {

struct Command {
  const api::Method* method;
  boost::json::object parameters;
  access::Role role;  // that whoever may write to this topic has for it
};

// Where all of them arrive, as filters to subscribe to.
std::vector<std::string> CommandFilters(const Topics& topics);

// Several where a text goes into several rows; they are to be called in this order. A message that
// is none of them, or whose payload does not fit, is a problem, and nothing of it is to be done.
std::variant<std::vector<Command>, api::Problem> ReadCommand(const Topics& topics,
                                                             const model::Bus& bus,
                                                             const Arrived& arrived);

}  // namespace hub::mqtt
