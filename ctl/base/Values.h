// What people write as values, as JSON. Throws Failure(kUsage), which says what would be right.
#pragma once

#include <boost/json/value.hpp>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace ctl {

// "on", "off", "true", "false"
bool ParseOnOff(const std::string& text);

// on and off, numbers (decimal, or hexadecimal with 0x)
boost::json::value ParseValue(const std::string& text);

// "mask=0x20", "end_a=16,16,16,16,16,16" (an array), "self_test=on"
std::pair<std::string, boost::json::value> ParseSetting(const std::string& text);

int64_t ParseNumber(const std::string& text, const std::string& what, int64_t least, int64_t most);

// Upper-case digits without what people put between bytes: "43 4f", "43:4F". Nothing where there
// is anything else.
std::optional<std::string> ParseHex(const std::vector<std::string>& words);

}  // namespace ctl
