#include "base/Text.h"

#include <algorithm>
#include <numeric>
#include <utility>

namespace ctl {

namespace {

char LowerLetter(char letter) {
  return letter >= 'A' && letter <= 'Z' ? static_cast<char>(letter - 'A' + 'a') : letter;
}

bool IsAlphanumeric(char letter) {
  const char lower = LowerLetter(letter);
  return (lower >= 'a' && lower <= 'z') || (letter >= '0' && letter <= '9');
}

bool StartsCharacter(char byte) { return (static_cast<unsigned char>(byte) & 0xC0U) != 0x80U; }

// Letters to change, add, take away, or to swap with their neighbour.
size_t Distance(std::string_view a, std::string_view b) {
  std::vector<size_t> two_above;
  std::vector<size_t> above(b.size() + 1);
  std::iota(above.begin(), above.end(), 0U);
  for (size_t i = 0; i < a.size(); ++i) {
    std::vector<size_t> row{i + 1};
    for (size_t j = 0; j < b.size(); ++j) {
      const size_t changed = above[j] + (a[i] == b[j] ? 0 : 1);
      row.push_back(std::min({changed, row[j] + 1, above[j + 1] + 1}));
      if (i > 0 && j > 0 && a[i] == b[j - 1] && a[i - 1] == b[j])
        row.back() = std::min(row.back(), two_above[j - 1] + 1);
    }
    two_above = std::exchange(above, std::move(row));
  }
  return above.back();
}

}  // namespace

std::string Lower(std::string_view text) {
  std::string lower(text);
  std::transform(lower.begin(), lower.end(), lower.begin(), LowerLetter);
  return lower;
}

std::string Printable(std::string_view text) {
  std::string printable;
  for (size_t i = 0; i < text.size(); ++i) {
    const auto byte = static_cast<unsigned char>(text[i]);
    const bool is_c1 =
        byte == 0xC2U && i + 1 < text.size() && static_cast<unsigned char>(text[i + 1]) < 0xA0U;
    if (is_c1) ++i;
    printable += byte < 0x20U || byte == 0x7FU || is_c1 ? '?' : text[i];
  }
  return printable;
}

size_t Width(std::string_view text) {
  return static_cast<size_t>(std::count_if(text.begin(), text.end(), StartsCharacter));
}

std::optional<std::string> Nearest(std::string_view word, std::span<const std::string> words) {
  const std::string lower = Lower(word);
  const std::string* nearest = nullptr;
  size_t least = std::max<size_t>(1, word.size() / 3) + 1;
  for (const std::string& candidate : words) {
    const size_t distance = Distance(lower, Lower(candidate));
    if (distance >= least) continue;
    least = distance;
    nearest = &candidate;
  }
  return nearest == nullptr ? std::nullopt : std::optional(*nearest);
}

std::string Listed(std::span<const std::string> words, std::string_view last) {
  std::string text;
  for (size_t i = 0; i < words.size(); ++i) {
    if (i > 0) text += i + 1 == words.size() ? " " + std::string(last) + " " : ", ";
    text += words[i];
  }
  return text;
}

std::string Joined(std::span<const std::string> words) {
  std::string text;
  for (const std::string& word : words) text += (text.empty() ? "" : " ") + word;
  return text;
}

std::vector<std::string> Split(std::string_view text, char separator) {
  std::vector<std::string> pieces;
  while (true) {
    const size_t end = text.find(separator);
    pieces.emplace_back(text.substr(0, end));
    if (end == std::string_view::npos) return pieces;
    text.remove_prefix(end + 1);
  }
}

std::string UrlEscape(std::string_view text) {
  constexpr std::string_view kDigits = "0123456789ABCDEF";
  std::string escaped;
  for (const char letter : text) {
    if (IsAlphanumeric(letter) || std::string_view("-_.~").find(letter) != std::string_view::npos) {
      escaped += letter;
      continue;
    }
    const auto byte = static_cast<unsigned char>(letter);
    escaped += {'%', kDigits[byte >> 4U], kDigits[byte & 0xFU]};
  }
  return escaped;
}

}  // namespace ctl
