// From the values that clients give to what the bus is to get. Throws a Problem where a value
// does not fit its channel.
#pragma once

#include <boost/json/object.hpp>
#include <boost/json/value.hpp>
#include <string>
#include <string_view>
#include <vector>

#include "link/Link.h"
#include "model/Bus.h"

namespace hub::api {

// The card is there and has outputs that take values.
void RequireOutputs(const model::Card& card);

// `where` names the field that a problem is about.
link::Target TargetOf(const model::Bus& bus, const model::Card& card, unsigned number,
                      const boost::json::value& value, std::string_view where);

// {"0":true,"7":false}, by the channels' numbers; at least one.
std::vector<link::Target> TargetsOf(const model::Bus& bus, const model::Card& card,
                                    const boost::json::object& values);

// For people: "5.0 (Lamp): on, 5.7: off".
std::string TargetsText(const model::Bus& bus, const model::Card& card,
                        const std::vector<link::Target>& targets);

}  // namespace hub::api
