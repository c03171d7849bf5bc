// The word that somebody meant. Pure.
#pragma once

#include <span>
#include <string_view>

namespace hub::settings {

// The one of `words` that takes the fewest letters put in, left out, exchanged or swapped with
// the next; empty where that is more than a third of them.
std::string_view Nearest(std::string_view word, std::span<const std::string_view> words);

}  // namespace hub::settings
