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

// The text fits its row of a glass, from that column on. Both count from 0, as the daemon's do.
struct GlassSize {
  size_t rows;
  size_t columns;
};
void RequireRoom(GlassSize glass, size_t row, size_t column, std::string_view text);

// For people: "5.0 (Lamp): on, 5.7: off".
std::string TargetsText(const model::Bus& bus, const model::Card& card,
                        const std::vector<link::Target>& targets);

}  // namespace hub::api
