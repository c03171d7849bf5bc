// A store that loses its power again and again: a process that stores is killed at a random
// moment, and what it had promised is looked for in its file.
#pragma once

#include <string>

namespace hub::store {

// Failures are reported where they are found. The folder is used from the first cut to the last.
void CutPower(const std::string& folder, int times);

}  // namespace hub::store
