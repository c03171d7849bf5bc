#include "base/Output.h"

#include <unistd.h>

#include <algorithm>
#include <cstdlib>

#include "base/Text.h"

namespace ctl {

namespace {

constexpr std::string_view kCodes[] = {"", "1", "2", "32", "33", "31"};  // as Colour counts

}  // namespace

bool WantsColours() {
  const char* refused = std::getenv("NO_COLOR");
  return isatty(STDOUT_FILENO) != 0 && (refused == nullptr || *refused == '\0');
}

std::string Paint::operator()(Colour colour, std::string_view text) const {
  if (!coloured_ || colour == Colour::kNone || text.empty()) return std::string(text);
  return "\033[" + std::string(kCodes[static_cast<size_t>(colour)]) + "m" + std::string(text) +
         "\033[0m";
}

std::string Table::Text(const Paint& paint) const {
  std::vector<size_t> widths;
  for (const auto& row : rows_) {
    if (row.size() > widths.size()) widths.resize(row.size());
    for (size_t i = 0; i < row.size(); ++i) widths[i] = std::max(widths[i], Width(row[i].text));
  }
  std::string text;
  for (const auto& row : rows_) {
    std::string line;
    size_t blanks = 0;
    for (size_t i = 0; i < row.size(); ++i) {
      const std::string cell = Printable(row[i].text);
      if (!cell.empty()) line += std::string(blanks, ' ') + paint(row[i].colour, cell);
      blanks = (cell.empty() ? blanks : 0) + widths[i] - Width(row[i].text) + 2;
    }
    text += line + "\n";
  }
  return text;
}

}  // namespace ctl
