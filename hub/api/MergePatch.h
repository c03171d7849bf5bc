// Documents that lie on top of each other, as RFC 7396 has it: what a patch names goes before,
// null removes, the rest stays. Pure functions.
#pragma once

#include <boost/json/object.hpp>

namespace hub::api {

boost::json::object Merge(boost::json::object base, const boost::json::object& patch);

// The smallest patch that makes `wanted` of `base`.
boost::json::object Difference(const boost::json::object& base, const boost::json::object& wanted);

}  // namespace hub::api
