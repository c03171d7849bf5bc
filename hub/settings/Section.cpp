#include "settings/Section.h"

#include <algorithm>
#include <iomanip>
#include <sstream>

#include "settings/Nearest.h"

namespace hub::settings {

namespace {

constexpr size_t kMostShown = 40;

std::string Quoted(std::string_view text) { return "`" + std::string(text) + "`"; }

// As it stands in the file, as far as it fits into a line.
std::string Shown(const toml::node& value) {
  if (value.is_table()) return "a section";
  if (value.is_array()) return "a list";
  std::ostringstream text;
  text << toml::toml_formatter(value, toml::format_flags::none);
  std::string shown = text.str();
  if (shown.size() > kMostShown) shown = shown.substr(0, kMostShown) + "...";
  return shown;
}

std::string RangeText(int64_t least, int64_t most) {
  return "a whole number from " + std::to_string(least) + " to " + std::to_string(most);
}

}  // namespace

Section::Section(const toml::table& file, SettingsErrors& errors) : Section(&file, "", errors) {}

Section::Section(const toml::table* table, std::string name, SettingsErrors& errors)
    : table_(table), name_(std::move(name)), errors_(errors) {}

Section Section::Open(std::string_view key) {
  const toml::node* node = Find(key);
  if (node != nullptr && !node->is_table())
    Refuse(key, *node, "a section: [" + std::string(key) + "]");
  const std::string inside = name_.empty() ? "" : name_ + ".";
  return {node == nullptr ? nullptr : node->as_table(), inside + std::string(key), errors_};
}

void Section::Take(std::string_view key, std::string& into, const Rule& rule) {
  const toml::node* node = Find(key);
  if (node == nullptr) return;
  const auto text = node->value_exact<std::string>();
  if (text && rule.fits(*text))
    into = *text;
  else if (rule.is_secret)
    Add(key, node->source(), Quoted(key) + " takes " + std::string(rule.takes));
  else
    Refuse(key, *node, rule.takes);
}

void Section::Take(std::string_view key, std::vector<std::string>& into, const Rule& rule) {
  const toml::node* node = Find(key);
  if (node == nullptr) return;
  const toml::array* array = node->as_array();
  if (array == nullptr) return Refuse(key, *node, "a list in [ ]");
  into.clear();
  for (const toml::node& item : *array) {
    const auto text = item.value_exact<std::string>();
    if (text && rule.fits(*text))
      into.push_back(*text);
    else
      Refuse(key, item, rule.takes);
  }
}

void Section::Take(std::string_view key, bool& into) {
  std::optional<bool> value;
  Take(key, value);
  into = value.value_or(into);
}

void Section::Take(std::string_view key, std::optional<bool>& into) {
  const toml::node* node = Find(key);
  if (node == nullptr) return;
  if (node->is_boolean())
    into = node->value_exact<bool>();
  else
    Refuse(key, *node, "true or false");
}

void Section::TakeNumber(std::string_view key, double& into, double least, double most) {
  const toml::node* node = Find(key);
  if (node == nullptr) return;
  const auto number = node->is_number() ? node->value<double>() : std::nullopt;
  if (number && *number >= least && *number <= most) {
    into = *number;
    return;
  }
  std::ostringstream takes;
  takes << std::fixed << std::setprecision(0) << "a number from " << least << " to " << most;
  Refuse(key, *node, takes.str());
}

int64_t Section::ReadInteger(std::string_view key, int64_t otherwise, int64_t least, int64_t most) {
  const toml::node* node = Find(key);
  if (node == nullptr) return otherwise;
  const auto number = node->value_exact<int64_t>();
  if (number && *number >= least && *number <= most) return *number;
  Refuse(key, *node, RangeText(least, most));
  return otherwise;
}

void Section::TakeWord(std::string_view key, std::span<const std::string_view> words,
                       const std::function<void(size_t place)>& use) {
  const toml::node* node = Find(key);
  if (node == nullptr) return;
  const auto text = node->value_exact<std::string_view>();
  const auto found = std::ranges::find(words, text.value_or(""));
  if (found != words.end()) return use(static_cast<size_t>(found - words.begin()));
  std::string takes;
  for (const std::string_view word : words)
    takes += (takes.empty() ? "\"" : " or \"") + std::string(word) + "\"";
  Refuse(key, *node, takes);
}

bool Section::Has(std::string_view key) const { return table_ != nullptr && table_->contains(key); }

bool Section::HasSection(std::string_view key) const {
  return Has(key) && table_->get(key)->is_table();
}

std::vector<std::string_view> Section::Keys() const {
  std::vector<std::string_view> keys;
  if (table_ == nullptr) return keys;
  for (const auto& [key, value] : *table_) keys.push_back(key.str());
  return keys;
}

void Section::Complain(std::string_view key, const std::string& text) {
  const toml::node* node = Find(key);
  Add(key, node == nullptr ? table_->source() : node->source(), Quoted(key) + " " + text);
}

void Section::Finish() {
  if (table_ == nullptr) return;
  for (const auto& [key, value] : *table_)
    if (std::ranges::count(taken_, key.str()) == 0)
      Add(key.str(), key.source(), Unknown(key.str()));
}

const toml::node* Section::Find(std::string_view key) {
  if (std::ranges::count(taken_, key) == 0) taken_.push_back(key);
  return table_ == nullptr ? nullptr : table_->get(key);
}

void Section::Refuse(std::string_view key, const toml::node& value, std::string_view takes) {
  Add(key, value.source(),
      Quoted(key) + " is " + Shown(value) + "; it takes " + std::string(takes));
}

void Section::Add(std::string_view key, const toml::source_region& where, std::string text) {
  const std::string inside = name_.empty() ? "" : name_ + ".";
  errors_.push_back(
      {where.begin.line, where.begin.column, inside + std::string(key), std::move(text)});
}

std::string Section::Unknown(std::string_view key) const {
  const std::string what = name_.empty() ? "unknown section " : "unknown key ";
  const std::string_view meant = Nearest(key, taken_);
  if (!meant.empty()) return what + Quoted(key) + "; is it " + Quoted(meant) + "?";
  std::string known;
  for (const std::string_view word : taken_)
    known += (known.empty() ? "" : ", ") + std::string(word);
  return what + Quoted(key) + "; there are " + known;
}

}  // namespace hub::settings
