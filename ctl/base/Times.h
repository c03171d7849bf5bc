// Durations and moments, as people write them and as the hub does. Pure, but for the time zone.
#pragma once

#include <chrono>
#include <optional>
#include <string>
#include <string_view>

namespace ctl {

using Moment = std::chrono::sys_time<std::chrono::milliseconds>;

// "500ms", "2s", "10m", "2h", "7d", with decimals where they come out as whole milliseconds.
std::optional<std::chrono::milliseconds> ParseDuration(std::string_view text);

// A duration is that long before `now`; else "2026-11-21", "2026-11-21 12:00" or
// "2026-11-21 12:00:05" in local time, or RFC 3339, whose zone counts.
std::optional<Moment> ParseMoment(const std::string& text, Moment now);

// "2026-11-21T12:00:00.000Z", as the hub writes it, or with another zone.
std::optional<Moment> ParseRfc3339(const std::string& text);
std::string FormatUtc(Moment moment);

// In local time: "2026-11-21 12:00:00", "12:00:00.000".
std::string FormatLocal(Moment moment);
std::string FormatClock(Moment moment);

}  // namespace ctl
