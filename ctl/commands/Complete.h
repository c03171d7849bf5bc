// What could stand next on a command line: for the completion scripts of shells, which call
// "qelmctl complete WORD...", the last word being the one under way.
#pragma once

#include <string>
#include <vector>

namespace ctl {

inline constexpr char kCompleteWord[] = "complete";

// A candidate a line. Asks the hub for cards and names where they could stand; prints nothing
// where it is not there.
void PrintCompletions(const std::vector<std::string>& words);

}  // namespace ctl
