// JSON texts as the doors read and write them. Pure functions.
#pragma once

#include <boost/json/value.hpp>
#include <string>
#include <string_view>
#include <variant>

#include "api/Problem.h"

namespace hub::api {

// At most 16 levels deep. A key that comes twice in one object is refused: which of the two was
// meant nobody can say.
std::variant<boost::json::value, Problem> ParseJson(std::string_view text);

// Numbers as people write them: 2.5, not 2.5E0. Bytes that are no UTF-8 become U+FFFD each.
std::string ToText(const boost::json::value& value);

}  // namespace hub::api
