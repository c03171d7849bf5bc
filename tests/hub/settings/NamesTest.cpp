#include <gtest/gtest.h>

#include "settings/Settings.h"

namespace hub::settings {
namespace {

model::Settings Names(std::string_view text) {
  auto parsed = Parse(text);
  if (const auto* errors = std::get_if<SettingsErrors>(&parsed)) {
    ADD_FAILURE() << ToText(errors->front(), "file");
    return {};
  }
  return std::get<Settings>(parsed).names;
}

// The first error; empty where all is well.
std::string Error(std::string_view text) {
  auto parsed = Parse(text);
  const auto* errors = std::get_if<SettingsErrors>(&parsed);
  return errors == nullptr ? "" : ToText(errors->front(), "f");
}

TEST(NameSettings, AreOfTheBusOfCardsAndOfChannels) {
  const model::Settings names =
      Names("[names]\nbus = \"bench\"\n\"5\" = \"Relays\"\n\"5.0\" = \"Lamp\"\nF = \"Knobs\"\n");
  EXPECT_EQ(names.bus_name, "bench");
  EXPECT_EQ(names.Card(5).name, "Relays");
  EXPECT_EQ(names.Card(15).name, "Knobs");
  EXPECT_EQ(names.Channel(5, 0).name, "Lamp");
  EXPECT_EQ(names.cards.size(), 2U);
  EXPECT_EQ(names.channels.size(), 1U);
}

TEST(NameSettings, AChannelHasUnitRangeDecimalsAndHysteresis) {
  const model::ChannelSettings channel =
      Names(
          "[names]\n\"F.3\" = \"Supply\"\n[channel.\"F.3\"]\nunit = \"V\"\nmin = 0\nmax = 5.5\n"
          "decimals = 2\nhysteresis = 0.02\n")
          .Channel(15, 3);
  EXPECT_EQ(channel.name, "Supply");
  EXPECT_EQ(channel.unit, "V");
  EXPECT_EQ(channel.min, 0);
  EXPECT_EQ(channel.max, 5.5);
  EXPECT_EQ(channel.decimals, 2);
  EXPECT_EQ(channel.hysteresis, 0.02);
  EXPECT_EQ(channel.active_high, std::nullopt);
}

TEST(NameSettings, ALineIsActiveHighOrLow) {
  EXPECT_EQ(Names("[channel.\"5.1\"]\nactive = \"high\"\n").Channel(5, 1).active_high, true);
  EXPECT_EQ(Names("[channel.\"3.15\"]\nactive = \"low\"\n").Channel(3, 15).active_high, false);
}

TEST(NameSettings, AChannelIsShownAsWhatItIsFor) {
  const model::Settings names =
      Names("[channel.\"5.0\"]\nas = \"light\"\n[channel.\"3.0\"]\ndevice-class = \"door\"\n");
  EXPECT_EQ(names.Channel(5, 0).shown_as, "light");
  EXPECT_EQ(names.Channel(3, 0).device_class, "door");
}

TEST(NameSettings, InfraredCodesHaveNames) {
  const model::Settings names = Names("[infrared]\n434F = \"TV on\"\n\"00\" = \"TV off\"\n");
  EXPECT_EQ(names.codes, (std::map<std::string, std::string>{{"00", "TV off"}, {"434F", "TV on"}}));
}

TEST(NameSettings, ARangeMayRunDownwards) {
  const auto channel =
      Names("[channel.\"0.1\"]\nunit = \"%\"\nmin = 100\nmax = -0.5\n").Channel(0, 1);
  EXPECT_EQ(channel.min, 100);
  EXPECT_EQ(channel.max, -0.5);
}

TEST(NameSettings, ACardHasItsGlassItsSignAndWhetherItIsKept) {
  const model::Settings names =
      Names("[card.E]\nrows = 2\ncolumns = 16\n[card.4]\nsigned = true\nkeep = false\n");
  EXPECT_EQ(names.Card(14).rows, 2);
  EXPECT_EQ(names.Card(14).columns, 16);
  EXPECT_EQ(names.Card(14).keep, std::nullopt);
  EXPECT_TRUE(names.Card(4).is_signed);
  EXPECT_EQ(names.Card(4).keep, false);
}

TEST(NameSettings, OtherCardsAndChannelsAreErrors) {
  for (const char* key : {"G", "f", "10", "", "5.16", "5.", "5.00", "5.01", "5.x", "5.-1", "5,1",
                          "55.1", "f.3", "5.1 ", " 5"}) {
    const std::string text = "[names]\n\"" + std::string(key) + "\" = \"x\"\n";
    EXPECT_EQ(Error(text), "f:2:" + std::to_string(std::string(key).size() + 6) + ": `" +
                               std::string(key) +
                               "` is neither a card (\"0\" to \"F\") nor a channel (\"5.0\")");
  }
}

TEST(NameSettings, SayWhereQuotesAreMissing) {
  EXPECT_EQ(Error("[names]\n5.0 = \"Lamp\"\n"),
            "f:2:1: `5` is a section; a channel stands in quotes: \"5.0\" = \"Lamp\"");
  EXPECT_EQ(Error("[channel.F.3]\nunit = \"V\"\n"),
            "f:1:1: `F` is no channel; it takes one in quotes: [channel.\"F.3\"]");
}

struct Row {
  const char* text;
  const char* error;
};

TEST(NameSettings, WhatDoesNotFitIsAnError) {
  constexpr Row kRows[] = {
      {"[names]\n\"5\" = \"\"\n",
       "f:2:7: `5` is \"\"; it takes 1 to 64 bytes of text without control characters"},
      {"[names]\nbus = \"a\\nb\"\n",
       "f:2:7: `bus` is \"a\\nb\"; it takes 1 to 64 bytes of text without control characters"},
      {"[names]\nbus = \"a\\u008Eb\"\n",
       "f:2:7: `bus` is \"a\\u008Eb\"; it takes 1 to 64 bytes of text without control characters"},
      {"[card.G]\n", "f:1:1: `G` is no card; it takes \"0\" to \"F\""},
      {"[card.E]\nrows = 9\n", "f:2:8: `rows` is 9; it takes a whole number from 1 to 8"},
      {"[card.E]\ncolumns = 81\n", "f:2:11: `columns` is 81; it takes a whole number from 1 to 80"},
      {"[card.E]\ncolums = 20\n", "f:2:1: unknown key `colums`; is it `columns`?"},
      {"[channel.\"5.1\"]\nactive = \"up\"\n",
       "f:2:10: `active` is \"up\"; it takes \"low\" or \"high\""},
      {"[channel.\"F.3\"]\nunit = \"V\"\ndecimals = 7\n",
       "f:3:12: `decimals` is 7; it takes a whole number from 0 to 6"},
      {"[channel.\"F.3\"]\nhysteresis = -1\n",
       "f:2:14: `hysteresis` is -1; it takes a number from 0 to 1000000000"},
      {"[channel.\"F.3\"]\nhysteresis = nan\n",
       "f:2:14: `hysteresis` is nan; it takes a number from 0 to 1000000000"},
      {"[channel.\"F.3\"]\nunit = \"V\"\nmin = -2000000000\n",
       "f:3:7: `min` is -2000000000; it takes a number from -1000000000 to 1000000000"},
      {"[channel.\"F.3\"]\nunit = \"V\"\nmax = 1000000001\n",
       "f:3:7: `max` is 1000000001; it takes a number from -1000000000 to 1000000000"},
      {"[channel.\"5.1\"]\nas = \"siren\"\n",
       "f:2:6: `as` is \"siren\"; it takes \"switch\", \"light\" or \"fan\""},
      {"[channel.\"3.1\"]\ndevice-class = \"gate\"\n",
       "f:2:16: `device-class` is \"gate\"; it takes a device class of Home Assistant, such as "
       "\"door\" or \"temperature\""},
      {"[infrared]\n434f = \"TV on\"\n",
       "f:2:8: `434f` is no code; it takes up to 35 bytes in capitals: \"434F\""},
      {"[infrared]\n434F = \"\"\n",
       "f:2:8: `434F` is \"\"; it takes 1 to 64 bytes of text without control characters"},
      {"[channel.\"F.3\"]\nmax = 0\n", "f:2:7: `max` is the same as `min`; the two differ"},
  };
  for (const Row& row : kRows) EXPECT_EQ(Error(row.text), row.error);
}

}  // namespace
}  // namespace hub::settings
