// The example that is installed and printed in the reference says what the program does.
#include <gtest/gtest.h>

#include <sstream>

#include "kit/Files.h"
#include "settings/Settings.h"

namespace hub::settings {
namespace {

const std::string kExample = EXAMPLE_FILE;

// With the lines that are switched off, but not with the remarks.
std::string WithAllLines(const std::string& text) {
  std::istringstream lines(text);
  std::string all;
  for (std::string line; std::getline(lines, line);) {
    const bool is_off = line.starts_with("# [") || line.starts_with("# \"") ||
                        (line.starts_with("# ") && line.find(" = ") != std::string::npos);
    all += (is_off ? line.substr(2) : line) + "\n";
  }
  return all;
}

Settings Read(const std::string& text) {
  auto parsed = Parse(text);
  if (const auto* errors = std::get_if<SettingsErrors>(&parsed)) {
    for (const SettingsError& error : *errors) ADD_FAILURE() << ToText(error, "qelm-hub.toml");
    return {};
  }
  return std::get<Settings>(std::move(parsed));
}

TEST(Example, IsExactlyTheDefaults) {
  EXPECT_TRUE(Read(ReadFile(kExample)) == Settings{});
  EXPECT_TRUE(Read(ReadFile(kExample)) == Read(""));
}

TEST(Example, HasEachKeyOnce) {
  const std::vector<std::string> keys{
      // clang-format off
      "[daemon]", "host", "cae", "io", "mon", "log",
      "[http]", "listen", "hosts", "proxies", "certificate", "key", "insecure-http",
      "max-connections",
      "[text]", "listen", "cae", "io", "mon",
      "[store]", "folder", "keep-days", "max-mb",
      "[broker]", "host", "port", "user", "password-file", "ca", "certificate", "key", "name",
      "discovery", "boards",
      "[names]", "bus", "\"5\"", "\"5.0\"",
      "[channel.\"F.3\"]", "unit", "min", "max", "decimals", "hysteresis",
      "[channel.\"5.1\"]", "active", "as",
      "[channel.\"3.0\"]", "device-class",
      "[card.E]", "rows", "columns",
      "[card.4]", "signed", "keep",
      "[infrared]", "434F",
      "[virtual-bus]", "control",
      // clang-format on
  };
  std::istringstream lines(WithAllLines(ReadFile(kExample)));
  std::vector<std::string> found;
  for (std::string line; std::getline(lines, line);)
    if (!line.starts_with("#") && !line.empty()) found.push_back(line.substr(0, line.find(' ')));
  EXPECT_EQ(found, keys);
}

TEST(Example, ItsLinesThatAreOffCanBeSwitchedOn) {
  const model::Settings names = Read(WithAllLines(ReadFile(kExample))).names;
  EXPECT_EQ(names.bus_name, "bench");
  EXPECT_EQ(names.Card(5).name, "Relays");
  EXPECT_EQ(names.Channel(5, 0).name, "Lamp");
  EXPECT_EQ(names.Channel(15, 3).unit, "V");
  EXPECT_EQ(names.Channel(15, 3).max, 5);
  EXPECT_EQ(names.Channel(5, 1).active_high, true);
  EXPECT_EQ(names.Card(14).columns, 20);
  EXPECT_TRUE(names.Card(4).is_signed);
  EXPECT_EQ(names.Card(4).keep, true);
}

}  // namespace
}  // namespace hub::settings
