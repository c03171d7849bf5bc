#include "settings/Settings.h"

#include <gtest/gtest.h>

#include "kit/Place.h"
#include "kit/TempDir.h"

namespace hub::settings {
namespace {

Settings Right(std::string_view text, Place place = Place::current()) {
  auto parsed = Parse(text);
  if (const auto* errors = std::get_if<SettingsErrors>(&parsed)) {
    for (const SettingsError& error : *errors) FAIL_AT(place) << ToText(error, "file");
    return {};
  }
  return std::get<Settings>(std::move(parsed));
}

// As they are printed.
std::vector<std::string> Errors(std::string_view text) {
  auto parsed = Parse(text);
  std::vector<std::string> lines;
  if (const auto* errors = std::get_if<SettingsErrors>(&parsed))
    for (const SettingsError& error : *errors) lines.push_back(ToText(error, "hub.toml"));
  return lines;
}

std::string Error(std::string_view text, Place place = Place::current()) {
  const std::vector<std::string> errors = Errors(text);
  if (errors.size() == 1) return errors[0];
  FAIL_AT(place) << errors.size() << " errors";
  return "";
}

using Lines = std::vector<std::string>;

TEST(Settings, AnEmptyFileIsTheDefaults) {
  const Settings settings = Right("");
  EXPECT_EQ(settings.daemon.host, "127.0.0.1");
  EXPECT_EQ(settings.daemon.ports, (std::array<uint16_t, 3>{5010, 5011, 5012}));
  EXPECT_EQ(settings.daemon.log, "/var/log/qelm/qelm.log");
  EXPECT_EQ(settings.http.listen, (std::vector<Endpoint>{{"127.0.0.1", 5080}, {"::1", 5080}}));
  EXPECT_TRUE(settings.http.hosts.empty());
  EXPECT_TRUE(settings.http.proxies.empty());
  EXPECT_EQ(settings.http.certificate, "");
  EXPECT_EQ(settings.http.key, "");
  EXPECT_FALSE(settings.http.insecure_http);
  EXPECT_EQ(settings.http.max_connections, 256);
  EXPECT_EQ(settings.text.listen, "127.0.0.1");
  EXPECT_EQ(settings.text.ports, (std::array<uint16_t, 3>{5110, 5111, 5112}));
  EXPECT_EQ(settings.store.folder, "/var/lib/qelm-hub");
  EXPECT_EQ(settings.store.keep_days, 7);
  EXPECT_EQ(settings.store.max_mb, 256);
  EXPECT_EQ(settings.broker.host, "");
  EXPECT_EQ(settings.broker.port, 1883);
  EXPECT_EQ(settings.broker.discovery, Discovery::kDevice);
  EXPECT_FALSE(settings.broker.boards);
  EXPECT_TRUE(settings.names.cards.empty());
  EXPECT_TRUE(settings.names.channels.empty());
  EXPECT_EQ(settings.virtual_bus.control, "");
}

TEST(Settings, EachKeyHasItsField) {
  const Settings settings = Right(R"(
[daemon]
host = "board.example"
cae = 6010
io = 6011
mon = 6012
log = ""
[http]
listen = ["0.0.0.0:80", "[::]:80"]
hosts = ["bench.local", "panel.example"]
proxies = ["10.0.0.1", "::1"]
certificate = "/etc/qelm/hub.pem"
key = "/etc/qelm/hub.key"
insecure-http = true
max-connections = 1000
[text]
listen = "::1"
cae = 6110
io = 6111
mon = 6112
[store]
folder = "/srv/hub"
keep-days = 30
max-mb = 64
[broker]
host = "broker.example"
port = 8883
user = "hub"
password-file = "/etc/qelm/broker"
ca = "/etc/qelm/ca.pem"
certificate = "/etc/qelm/board.pem"
key = "/etc/qelm/board.key"
name = "bench-2"
discovery = "components"
boards = true
[virtual-bus]
control = "/run/qelm-bus/control"
)");
  Settings expected;
  expected.daemon = {"board.example", {6010, 6011, 6012}, ""};
  expected.http = {{{"0.0.0.0", 80}, {"::", 80}},
                   {"bench.local", "panel.example"},
                   {"10.0.0.1", "::1"},
                   "/etc/qelm/hub.pem",
                   "/etc/qelm/hub.key",
                   true,
                   1000};
  expected.text = {"::1", {6110, 6111, 6112}};
  expected.store = {"/srv/hub", 30, 64};
  expected.broker = {"broker.example",
                     8883,
                     "hub",
                     "/etc/qelm/broker",
                     "/etc/qelm/ca.pem",
                     "/etc/qelm/board.pem",
                     "/etc/qelm/board.key",
                     "bench-2",
                     Discovery::kComponents,
                     true};
  expected.virtual_bus.control = "/run/qelm-bus/control";
  EXPECT_TRUE(settings == expected);
}

TEST(Settings, ListsMayBeEmpty) {
  EXPECT_TRUE(Right("[http]\nlisten = []\n").http.listen.empty());
  EXPECT_EQ(Right("[text]\nlisten = \"\"\n").text.listen, "");
}

TEST(Settings, AnUnknownKeyIsAnErrorAndSaysWhatWasMeant) {
  EXPECT_EQ(Error("[broker]\nhost = \"a\"\nprot = 1883\n"),
            "hub.toml:3:1: unknown key `prot`; is it `port`?");
  EXPECT_EQ(Error("[virtual-bus]\nfolder = \"/\"\n"),
            "hub.toml:2:1: unknown key `folder`; there are control");
  EXPECT_EQ(Error("[htpp]\n"), "hub.toml:1:2: unknown section `htpp`; is it `http`?");
  EXPECT_EQ(Error("port = 1\n"),
            "hub.toml:1:1: unknown section `port`; there are daemon, http, text, store, broker, "
            "names, channel, card, infrared, virtual-bus");
}

TEST(Settings, AnUnknownKeyIsNamedWithoutItsValue) {
  EXPECT_EQ(Error("[broker]\npassword = \"hunter22\"\n").find("hunter22"), std::string::npos);
}

TEST(Settings, WhatStandsInThePlaceOfAFileWithASecretIsNotShown) {
  EXPECT_EQ(Error("[broker]\nhost = \"a\"\npassword-file = \"hunter22\"\n"),
            "hub.toml:3:17: `password-file` takes a path from the root, or \"\" for none");
  for (const char* const text :
       {"[broker]\npassword-file = 22222222\n", "[broker]\nkey = \"hunter22222222\"\n",
        "[http]\nkey = \"hunter22222222\"\n", "[http]\nkey = [\"22222222\"]\n"})
    for (const std::string& error : Errors(text))
      EXPECT_EQ(error.find("22222222"), std::string::npos) << error;
}

struct Row {
  const char* text;
  const char* error;
};

TEST(Settings, AWrongTypeIsAnErrorAndSaysWhatWouldBeRight) {
  constexpr Row kRows[] = {
      {"[daemon]\ncae = \"5010\"\n",
       "hub.toml:2:7: `cae` is \"5010\"; it takes a whole number from 1 to 65535"},
      {"[daemon]\ncae = 5010.0\n",
       "hub.toml:2:7: `cae` is 5010.0; it takes a whole number from 1 to 65535"},
      {"[daemon]\nhost = 5\n",
       "hub.toml:2:8: `host` is 5; it takes a host's name or address, without a port"},
      {"[http]\ninsecure-http = \"true\"\n",
       "hub.toml:2:17: `insecure-http` is \"true\"; it takes true or false"},
      {"[http]\nhosts = \"bench\"\n", "hub.toml:2:9: `hosts` is \"bench\"; it takes a list in [ ]"},
      {"[http]\nhosts = [5]\n",
       "hub.toml:2:10: `hosts` is 5; it takes a host's name, without scheme and port; other "
       "alphabets as \"xn--...\""},
      {"[broker]\ndiscovery = true\n",
       "hub.toml:2:13: `discovery` is true; it takes \"device\" or \"components\" or \"off\""},
      {"http = 5\n", "hub.toml:1:8: `http` is 5; it takes a section: [http]"},
      {"[store]\nfolder = [\"/\"]\n",
       "hub.toml:2:10: `folder` is a list; it takes a path from the root"},
      {"[channel.\"F.3\"]\nunit = \"V\"\nmin = \"0\"\n",
       "hub.toml:3:7: `min` is \"0\"; it takes a number from -1000000000 to 1000000000"},
  };
  for (const Row& row : kRows) EXPECT_EQ(Error(row.text), row.error);
}

TEST(Settings, AnErrorIsOneLineWhateverTheKeyHolds) {
  EXPECT_EQ(Error("[virtual-bus]\n\"a\\nb\" = 1\n"),
            "hub.toml:2:1: unknown key `a b`; there are control");
}

TEST(Settings, AValueOutOfRangeIsAnErrorAndSaysWhatWouldBeRight) {
  constexpr Row kRows[] = {
      {"[daemon]\ncae = 0\n", "hub.toml:2:7: `cae` is 0; it takes a whole number from 1 to 65535"},
      {"[daemon]\nmon = 65536\n",
       "hub.toml:2:7: `mon` is 65536; it takes a whole number from 1 to 65535"},
      {"[http]\nmax-connections = -1\n",
       "hub.toml:2:19: `max-connections` is -1; it takes a whole number from 1 to 10000"},
      {"[store]\nkeep-days = 0\n",
       "hub.toml:2:13: `keep-days` is 0; it takes a whole number from 1 to 36500"},
      {"[store]\nfolder = \"\"\n",
       "hub.toml:2:10: `folder` is \"\"; it takes a path from the root"},
      {"[store]\nfolder = \"hub\"\n",
       "hub.toml:2:10: `folder` is \"hub\"; it takes a path from the root"},
      {"[http]\nlisten = [\"127.0.0.1:5080\", \"localhost:5080\"]\n",
       "hub.toml:2:29: `listen` is \"localhost:5080\"; it takes an address and a port: "
       "\"127.0.0.1:5080\", \"[::1]:5080\""},
      {"[http]\nhosts = [\"http://bench\"]\n",
       "hub.toml:2:10: `hosts` is \"http://bench\"; it takes a host's name, without scheme and "
       "port; other alphabets as \"xn--...\""},
      {"[http]\nproxies = [\"proxy\"]\n",
       "hub.toml:2:12: `proxies` is \"proxy\"; it takes an address such as \"192.168.1.2\", no "
       "name"},
      {"[text]\nlisten = \"0.0.0.0\"\n",
       "hub.toml:2:10: `listen` is \"0.0.0.0\"; it takes \"127.0.0.1\", \"::1\", or \"\" for no "
       "text ports: these know no log-in"},
      {"[broker]\nname = \"a b\"\n",
       "hub.toml:2:8: `name` is \"a b\"; it takes up to 32 letters, digits, \"-\", \"_\"; \"\" for "
       "the host's"},
      {"[broker]\ndiscovery = \"on\"\n",
       "hub.toml:2:13: `discovery` is \"on\"; it takes \"device\" or \"components\" or \"off\""},
  };
  for (const Row& row : kRows) EXPECT_EQ(Error(row.text), row.error);
}

TEST(Settings, AllErrorsAreListedInTheOrderOfTheFile) {
  EXPECT_EQ(Errors("[virtual-bus]\ncontrol = 1\nx = 2\n[daemon]\nio = 0\ncae = 0\n[htpp]\n"),
            (Lines{"hub.toml:2:11: `control` is 1; it takes a path from the root, or \"\" for none",
                   "hub.toml:3:1: unknown key `x`; there are control",
                   "hub.toml:5:6: `io` is 0; it takes a whole number from 1 to 65535",
                   "hub.toml:6:7: `cae` is 0; it takes a whole number from 1 to 65535",
                   "hub.toml:7:2: unknown section `htpp`; is it `http`?"}));
}

TEST(Settings, WhatOthersCanReachTakesACertificateOrAnInsecureWord) {
  EXPECT_EQ(Error("[http]\nlisten = [\"127.0.0.1:80\", \"0.0.0.0:80\"]\n"),
            "hub.toml:2:10: `listen` has 0.0.0.0:80, which others can reach; that takes "
            "`certificate` and `key`, or `insecure-http = true`");
  EXPECT_EQ(Errors("[http]\nlisten = [\"[::]:80\", \"192.168.1.1:80\"]\n").size(), 2U);
  Right("[http]\nlisten = [\"0.0.0.0:80\"]\ninsecure-http = true\n");
  Right("[http]\nlisten = [\"0.0.0.0:80\"]\ncertificate = \"/a\"\nkey = \"/b\"\n");
  Right("[http]\nlisten = [\"127.0.0.2:80\", \"[::1]:80\"]\n");
}

TEST(Settings, ACertificateWantsItsKey) {
  EXPECT_EQ(Error("[http]\ncertificate = \"/a\"\n"),
            "hub.toml:2:15: `certificate` wants `key` too");
  EXPECT_EQ(Error("[http]\nkey = \"/a\"\n"), "hub.toml:2:7: `key` wants `certificate` too");
  EXPECT_EQ(Error("[broker]\nkey = \"/a\"\n"), "hub.toml:2:7: `key` wants `certificate` too");
}

TEST(Settings, PortsAndListenersDiffer) {
  EXPECT_EQ(Error("[daemon]\ncae = 5011\n"),
            "hub.toml:2:7: `cae` is another one's port too; the three differ");
  EXPECT_EQ(Error("[text]\ncae = 1\nio = 2\nmon = 5110\n[daemon]\nio = 5012\n"),
            "hub.toml:6:6: `io` is another one's port too; the three differ");
  EXPECT_EQ(Error("[http]\nlisten = [\"[::1]:80\", \"[0::1]:80\"]\n"),
            "hub.toml:2:10: `listen` has [::1]:80 twice");
}

TEST(Settings, WhatIsNoTomlIsAnError) {
  EXPECT_TRUE(Error("[daemon\n").starts_with("hub.toml:1:8: "));
  EXPECT_TRUE(Error("[daemon]\ncae = 1\ncae = 2\n").starts_with("hub.toml:3:"));
  EXPECT_TRUE(Error("[daemon]\nhost = \xFF\n").starts_with("hub.toml:2:"));
}

TEST(Settings, ALongValueIsShownInPart) {
  const std::string text = "[store]\nfolder = \"" + std::string(1000, 'x') + "\"\n";
  EXPECT_EQ(Error(text), "hub.toml:2:10: `folder` is \"" + std::string(39, 'x') +
                             "...; it takes a path from the root");
}

TEST(Settings, AreReadFromAFile) {
  const TempDir folder;
  const auto loaded = Load(folder.Write("hub.toml", "[daemon]\ncae = 6010\n"));
  ASSERT_TRUE(std::holds_alternative<Settings>(loaded));
  EXPECT_EQ(std::get<Settings>(loaded).daemon.ports[0], 6010);
}

TEST(Settings, AFileThatCannotBeReadIsAnError) {
  const TempDir folder;
  const auto missing = Load(folder.Path("hub.toml"));
  ASSERT_TRUE(std::holds_alternative<SettingsErrors>(missing));
  EXPECT_EQ(ToText(std::get<SettingsErrors>(missing)[0], "hub.toml"),
            "hub.toml: cannot be read: No such file or directory");
  const auto directory = Load(folder.Path(""));
  ASSERT_TRUE(std::holds_alternative<SettingsErrors>(directory));
  EXPECT_EQ(ToText(std::get<SettingsErrors>(directory)[0], "hub.toml"),
            "hub.toml: cannot be read: Is a directory");
  EXPECT_TRUE(std::holds_alternative<Settings>(Load(folder.Write("empty", ""))));
}

}  // namespace
}  // namespace hub::settings
