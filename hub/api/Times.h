// Times as clients read and write them: RFC 3339, in UTC, with milliseconds. Pure functions.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "model/Change.h"

namespace hub::api {

std::string TimeText(model::Time time);  // "2026-11-21T12:00:00.000Z"

int64_t Milliseconds(model::Time time);  // since 1970
model::Time TimeOf(int64_t milliseconds);

// RFC 3339 with any offset, or milliseconds since 1970 in digits. From 1970 to the end of 9999.
std::optional<int64_t> ParseTime(std::string_view text);

inline constexpr int64_t kLastTime = 253'402'300'799'999;  // milliseconds

}  // namespace hub::api
