#include "settings/Nearest.h"

#include <algorithm>
#include <vector>

namespace hub::settings {

namespace {

// A row of the table for each letter of `from`; the two rows above are enough to go on.
size_t Distance(std::string_view from, std::string_view to) {
  std::vector<size_t> second_last;
  std::vector<size_t> last(to.size() + 1);
  for (size_t j = 0; j <= to.size(); ++j) last[j] = j;
  for (size_t i = 1; i <= from.size(); ++i) {
    std::vector<size_t> row{i};
    for (size_t j = 1; j <= to.size(); ++j) {
      const size_t exchanged = last[j - 1] + (from[i - 1] == to[j - 1] ? 0 : 1);
      row.push_back(std::min({last[j] + 1, row[j - 1] + 1, exchanged}));
      const bool swapped = i > 1 && j > 1 && from[i - 1] == to[j - 2] && from[i - 2] == to[j - 1];
      if (swapped) row[j] = std::min(row[j], second_last[j - 2] + 1);
    }
    second_last = std::move(last);
    last = std::move(row);
  }
  return last.back();
}

}  // namespace

std::string_view Nearest(std::string_view word, std::span<const std::string_view> words) {
  std::string_view nearest;
  size_t least = 0;
  for (const std::string_view candidate : words) {
    const size_t distance = Distance(word, candidate);
    const size_t most = std::max<size_t>(std::max(word.size(), candidate.size()) / 3, 1);
    if (distance > most || (!nearest.empty() && distance >= least)) continue;
    nearest = candidate;
    least = distance;
  }
  return nearest;
}

}  // namespace hub::settings
