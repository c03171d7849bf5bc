// Which keys hold from the start to the end of a run. All others can be read again. Pure.
#pragma once

#include <string_view>
#include <vector>

#include "settings/Settings.h"

namespace hub::settings {

// Those in which `fresh` differs from what the hub was started with: "http.listen".
std::vector<std::string_view> RestartKeys(const Settings& started, const Settings& fresh);

}  // namespace hub::settings
