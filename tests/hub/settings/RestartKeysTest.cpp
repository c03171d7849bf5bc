#include "settings/RestartKeys.h"

#include <gtest/gtest.h>

#include <string>

namespace hub::settings {
namespace {

using Keys = std::vector<std::string_view>;

Settings Of(const std::string& text) { return std::get<Settings>(Parse(text)); }

struct Changed {
  std::string section;
  std::string key;
  std::string value;
};

void PrintTo(const Changed& changed, std::ostream* out) {
  *out << changed.section << '.' << changed.key;
}

class RestartKeysTest : public testing::TestWithParam<Changed> {};

TEST_P(RestartKeysTest, NamesTheKeyThatHasChanged) {
  const auto& [section, key, value] = GetParam();
  const std::string full = section + '.' + key;
  EXPECT_EQ(RestartKeys({}, Of("[" + section + "]\n" + key + " = " + value + "\n")), Keys{full});
}

INSTANTIATE_TEST_SUITE_P(
    All, RestartKeysTest,
    testing::Values(Changed{"daemon", "host", "\"bench\""}, Changed{"daemon", "cae", "6010"},
                    Changed{"daemon", "io", "6011"}, Changed{"daemon", "mon", "6012"},
                    Changed{"daemon", "log", "\"\""}, Changed{"http", "listen", "[]"},
                    Changed{"http", "hosts", "[\"bench.local\"]"},
                    Changed{"http", "proxies", "[\"10.0.0.1\"]"},
                    Changed{"http", "insecure-http", "true"},
                    Changed{"http", "max-connections", "1000"}, Changed{"text", "listen", "\"\""},
                    Changed{"text", "cae", "6110"}, Changed{"text", "io", "6111"},
                    Changed{"text", "mon", "6112"}, Changed{"store", "folder", "\"/srv/hub\""},
                    Changed{"store", "keep-days", "30"}, Changed{"store", "max-mb", "64"},
                    Changed{"virtual-bus", "control", "\"/run/qelm-bus/control\""}));

TEST(RestartKeys, ACertificateComesWithItsKey) {
  EXPECT_EQ(RestartKeys({}, Of("[http]\ncertificate = \"/c.pem\"\nkey = \"/k.pem\"\n")),
            (Keys{"http.certificate", "http.key"}));
}

TEST(RestartKeys, NamesUnitsAndTheBrokerNeedNone) {
  EXPECT_EQ(RestartKeys({}, Of("[names]\n\"5\" = \"Relays\"\n[channel.\"F.3\"]\nunit = \"V\"\n"
                               "[card.4]\nkeep = true\n[broker]\nhost = \"10.0.0.5\"\n")),
            Keys{});
}

}  // namespace
}  // namespace hub::settings
