// The parameters of a request against those of its method. Pure functions.
#pragma once

#include <boost/json/object.hpp>
#include <span>
#include <string>
#include <string_view>

#include "api/Api.h"
#include "api/Problem.h"

namespace hub::api {

// Throws the first Problem. Afterwards each parameter has its type: what the path and the query
// bring as text is converted, a whole number is an int64, any other number a double, a time
// milliseconds; a null that stands for nothing is gone.
void CheckParameters(const Method& method, boost::json::object& parameters);

// No control characters, and at most so many characters; throws.
void CheckText(std::string_view where, std::string_view text, size_t least, size_t most);

// A field that nobody knows, by its name: `channels.F.3 has no "unti"; it has unit and min`. The
// problem is at the name, below `way` where there is one.
Problem UnknownField(std::string_view holder, std::string_view way, std::string_view name,
                     std::span<const std::string_view> known);

// A name that somebody gave, as far as it is fit to be read.
std::string Shown(std::string_view name);

// "a", "a or b", "a, b or c".
std::string Listed(std::span<const std::string_view> words, std::string_view last = "or");

}  // namespace hub::api
