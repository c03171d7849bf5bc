// Words that parameters take.
#pragma once

#include <array>
#include <string_view>

namespace hub::api {

// By protocol::LcdControl.
inline constexpr std::array<std::string_view, 7> kControlWords{
    "clear", "light-on", "light-off", "cursor-on", "cursor-off", "blink-on", "blink-off"};

// Of another board's display: all that the topics have.
inline constexpr std::array<std::string_view, 2> kLightWords{"light-on", "light-off"};

inline constexpr std::array<std::string_view, 3> kRoleWords{"view", "use", "admin"};

}  // namespace hub::api
