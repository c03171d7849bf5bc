#include "virtualbus/Shown.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <sstream>
#include <string_view>

#include "protocol/Hex.h"

namespace hub::virtualbus {

namespace {

// Kinds whose bytes come from outside, and the word that these stand behind.
struct InputRow {
  std::string_view kind;
  std::string_view word;
};
constexpr std::array<InputRow, 3> kInputs{{
    {"digital-input", "Lines"},
    {"analogue-input", "Values"},
    {"keys", "State"},
}};

struct CountRow {
  std::string_view word;
  int64_t Status::*count;
};
constexpr std::array<CountRow, 4> kCounts{{
    {"frames", &Status::frames},
    {"replies", &Status::replies},
    {"lost", &Status::lost},
    {"shaped", &Status::shaped},
}};

// "  word rest"
struct Item {
  std::string word;
  std::string rest;
};

Item ItemOf(const std::string& line) {
  Item item;
  std::istringstream words(line);
  words >> item.word >> std::ws;
  std::getline(words, item.rest);
  return item;
}

std::optional<std::vector<uint8_t>> ParseBytes(const std::string& text) {
  std::vector<uint8_t> bytes;
  std::istringstream words(text);
  for (std::string word; words >> word;) {
    const auto byte = protocol::ParseHexByte(word);
    if (!byte) return std::nullopt;
    bytes.push_back(*byte);
  }
  return bytes;
}

}  // namespace

std::optional<Status> ParseStatus(std::span<const std::string> lines) {
  Status status;
  bool has_cable = false;
  for (const std::string& line : lines) {
    const Item item = ItemOf(line);
    if (item.word == "device") status.device = item.rest;
    if (item.word == "cable") {
      has_cable = true;
      status.cable = item.rest == "plugged";
    }
    if (item.word == "fault") status.faults.push_back(item.rest);
    const auto* const row = std::ranges::find(kCounts, item.word, &CountRow::word);
    if (row == kCounts.end()) continue;
    const char* const end = item.rest.data() + item.rest.size();
    if (std::from_chars(item.rest.data(), end, status.*(row->count)).ptr != end)
      return std::nullopt;
  }
  if (!has_cable) return std::nullopt;
  return status;
}

// "card 3 digital-input", "card 5 digital-output (pulled)"; then its items.
std::optional<ShownCard> ParseCard(std::span<const std::string> lines) {
  if (lines.empty()) return std::nullopt;
  std::istringstream heading(lines.front());
  std::string card;
  std::string address;
  std::string state;
  ShownCard shown;
  heading >> card >> address >> shown.kind >> state;
  if (card != "card" || shown.kind.empty()) return std::nullopt;
  shown.is_plugged = state != "(pulled)";
  const auto* const row = std::ranges::find(kInputs, shown.kind, &InputRow::kind);
  if (row == kInputs.end()) return shown;
  for (const std::string& line : lines.subspan(1)) {
    const Item item = ItemOf(line);
    if (item.word == row->word) shown.values = ParseBytes(item.rest);
  }
  return shown;
}

}  // namespace hub::virtualbus
