// One section of the file: takes its keys into the fields that they are for, and lists what is
// wrong with them. Who reads a section names each key once; what nobody named is unknown.
#pragma once

#include <toml++/toml.h>
#include <cstdint>
#include <functional>
#include <limits>
#include <optional>
#include <string>
#include <string_view>
#include <type_traits>
#include <vector>

#include "settings/Rules.h"
#include "settings/Settings.h"

namespace hub::settings {

class Section {
 public:
  // The whole file.
  Section(const toml::table& file, SettingsErrors& errors);

  // A section inside of this one; empty where it is not given.
  Section Open(std::string_view key);

  // Where the key is given and right, `into` becomes its value.
  void Take(std::string_view key, std::string& into, const Rule& rule);
  void Take(std::string_view key, std::vector<std::string>& into, const Rule& rule);
  void Take(std::string_view key, bool& into);
  void Take(std::string_view key, std::optional<bool>& into);
  void TakeNumber(std::string_view key, double& into, double least, double most);
  template <typename Integer>
  void TakeInteger(std::string_view key, Integer& into, int64_t least, int64_t most) {
    into = static_cast<Integer>(ReadInteger(key, into, least, most));
  }
  void TakePort(std::string_view key, uint16_t& into) {
    TakeInteger(key, into, 1, std::numeric_limits<uint16_t>::max());
  }

  // One of `words`; its place among them.
  void TakeWord(std::string_view key, std::span<const std::string_view> words,
                const std::function<void(size_t place)>& use);

  bool Has(std::string_view key) const;
  bool HasSection(std::string_view key) const;
  std::vector<std::string_view> Keys() const;

  // Says that something is wrong with a key, where it stands; `text` goes on from its name.
  void Complain(std::string_view key, const std::string& text);

  void Finish();  // lists the keys that nobody took

 private:
  Section(const toml::table* table, std::string name, SettingsErrors& errors);

  const toml::node* Find(std::string_view key);
  int64_t ReadInteger(std::string_view key, int64_t otherwise, int64_t least, int64_t most);
  void Refuse(std::string_view key, const toml::node& value, std::string_view takes);
  void Add(std::string_view key, const toml::source_region& where, std::string text);
  std::string Unknown(std::string_view key) const;

  const toml::table* table_;  // null: not given
  std::string name_;          // "http"; empty for the whole file
  SettingsErrors& errors_;
  std::vector<std::string_view> taken_;
};

}  // namespace hub::settings
