// Texts that people give to things. Pure functions.
#pragma once

#include <string_view>

namespace hub::model {

// What cannot be seen: C0, DEL, and C1 (as UTF-8 has them: C2 80 to C2 9F).
bool HasControls(std::string_view text);

}  // namespace hub::model
