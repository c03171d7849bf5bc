// What is looked for in the hub's JSON. A field that is missing, or of another type, reads as
// nothing: a newer hub may say more, and an older one less.
#pragma once

#include <boost/json/value.hpp>
#include <optional>
#include <string>
#include <string_view>

namespace ctl {

// A field; null where there is none.
const boost::json::value& At(const boost::json::value& object, std::string_view key);

std::string TextAt(const boost::json::value& object, std::string_view key);
bool BoolAt(const boost::json::value& object, std::string_view key);
std::optional<double> NumberAt(const boost::json::value& object, std::string_view key);

// The items of an array; none where it is none.
const boost::json::array& ItemsAt(const boost::json::value& object, std::string_view key);

// A value for people: "on", "off", "2.5", "unknown" for null, a printable text.
std::string ValueText(const boost::json::value& value);

}  // namespace ctl
