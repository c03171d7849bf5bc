// What the page keeps for everybody: the order of the cards, those that it hides, and groups of
// them. Pure functions.
#pragma once

#include <boost/json/object.hpp>

namespace hub::api {

// {"order":["5","E"], "hidden":["9"], "groups":[{"name":"Hall", "cards":["5","3"]}]}: all keys are
// there, whatever was given. A card stands once in each list, and in one group at most; it need
// not be on the bus. Throws a Problem.
boost::json::object ReadPage(const boost::json::object& given);

}  // namespace hub::api
