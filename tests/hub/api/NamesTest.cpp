// Names, setup, what the page keeps, and the backup of all of them.
#include "api/ApiTest.h"

namespace hub::api {
namespace {

class NamesTest : public ApiTest {
 protected:
  NamesTest() {
    model::Settings file;
    file.bus_name = "bench";
    file.cards[5].name = "Relays";
    file.channels[{5, 0}].name = "Lamp";
    file.channels[{0xF, 3}].unit = "V";
    file.channels[{0xF, 3}].max = 5;
    file.cards[0xE].rows = 2;
    FileHas(file);
  }
};

TEST_F(NamesTest, TheFilesNamesAreInEffect) {
  ExpectResult("names.get", "{}",
               R"({"bus":"bench", "cards":{"5":"Relays"}, "channels":{"5.0":"Lamp"},
                   "infrared":{}})");
}

TEST_F(NamesTest, NamesAreMergedAndNullRemoves) {
  ExpectResult("names.merge", R"({"cards":{"0":"Arm","5":null},"channels":{"0.1":"Elbow"}})",
               R"({"bus":"bench", "cards":{"0":"Arm"}, "channels":{"0.1":"Elbow","5.0":"Lamp"},
                   "infrared":{}})");
  EXPECT_EQ(LastNote(), "hub operator: names changed");
  EXPECT_EQ(store.documents["names"],
            R"({"cards":{"5":null,"0":"Arm"},"channels":{"0.1":"Elbow"}})");
  EXPECT_EQ(bus.Names().Card(0).name, "Arm");
  EXPECT_EQ(bus.Names().Card(5).name, "");
  EXPECT_EQ(bus.Names().Channel(0xF, 3).unit, "V");
}

TEST_F(NamesTest, NamesAreReplacedAsAWhole) {
  ExpectResult("names.set", R"({"cards":{"0":"Arm"}})",
               R"({"bus":"bench", "cards":{"0":"Arm"}, "channels":{}, "infrared":{}})");
  ExpectResult("names.set", R"({"bus":"shop","channels":{}})",
               R"({"bus":"shop", "cards":{}, "channels":{}, "infrared":{}})");
  ExpectResult("names.merge", R"({"bus":null})",
               R"({"bus":"bench", "cards":{}, "channels":{}, "infrared":{}})");
}

TEST_F(NamesTest, WhatWasChangedOutlivesTheHubAndGoesBeforeTheFile) {
  Result("names.merge", R"({"cards":{"5":"Lights"}})");
  model::Settings file;
  file.bus_name = "workshop";
  file.cards[5].name = "Outputs";
  file.cards[0].name = "Arm";
  FileHas(file);
  ExpectResult(
      "names.get", "{}",
      R"({"bus":"workshop", "cards":{"0":"Arm","5":"Lights"}, "channels":{}, "infrared":{}})");
}

TEST_F(NamesTest, NullRemovesAllOfThem) {
  Result("names.merge", R"({"cards":{"5":"Lights"},"channels":{"5.1":"Fan"}})");
  Result("names.merge", R"({"cards":null})");
  EXPECT_EQ(bus.Names().Card(5).name, "");
  EXPECT_EQ(bus.Names().Channel(5, 1).name, "Fan");
  Result("setup.merge", R"({"channels":{"F.0":{"max":5}}})");
  Result("setup.merge", R"({"channels":null})");
  EXPECT_EQ(bus.Names().Channel(15, 0).max, 255);
  ExpectProblem("names.merge", R"({"cards":7})", 422, "cards", "cards takes an object");
}

TEST_F(NamesTest, AChangeOfNamesIsPublished) {
  uint64_t published = 0;
  bus.Listen([&published](const model::Change& change) { published += change.bus ? 1 : 0; });
  Result("names.merge", R"({"cards":{"5":"Lights"}})");
  EXPECT_EQ(published, 1U);
}

TEST_F(NamesTest, ANameThatDoesNotFitChangesNothing) {
  const auto refused = [this](const char* parameters, const char* where, const char* detail) {
    ExpectProblem("names.merge", parameters, 422, where, detail);
  };
  refused(R"({"cards":{"0":"Arm","G":"x"}})", "cards.G",
          "a card is named by its address: 0 to 9 or A to F");
  refused(R"({"channels":{"5":"x"}})", "channels.5",
          "a channel is named by address and number: 5.0");
  refused(R"({"channels":{"../..":"x"}})", "channels.../..",
          "a channel is named by address and number: 5.0");
  refused(R"({"cards":{"5":7}})", "cards.5", "cards.5 takes a text");
  refused(R"({"cards":{"5":""}})", "cards.5", "a text of 0 characters; cards.5 takes 1 to 64");
  refused(R"({"cards":{"5":"a\u0000b"}})", "cards.5",
          "cards.5 holds a control character; only characters that can be seen go through");
  refused(R"({"bus":7})", "bus", "bus takes a text");
  refused(R"({"cards":7})", "cards", "cards takes an object");
  refused(R"({"units":{}})", "units",
          "names.merge has no \"units\"; it has bus, cards, channels and infrared");
  ExpectProblem("names.set", R"({"cards":{"5":null}})", 422, "cards.5", "cards.5 takes a text");
  EXPECT_TRUE(store.documents.empty());
  EXPECT_EQ(bus.Names().Card(0).name, "");
}

TEST_F(NamesTest, CodesHaveNamesThatTheCardTells) {
  ExpectResult("names.merge", R"({"infrared":{"434F":"TV on","FF":"TV off"}})",
               R"({"bus":"bench", "cards":{"5":"Relays"}, "channels":{"5.0":"Lamp"},
                   "infrared":{"434F":"TV on","FF":"TV off"}})");
  EXPECT_EQ(store.documents["names"], R"({"infrared":{"434F":"TV on","FF":"TV off"}})");
  EXPECT_NE(
      Result("cards.get", R"({"address":"9"})").find(R"("codes":{"434F":"TV on","FF":"TV off"})"),
      std::string::npos);
  Result("names.merge", R"({"infrared":{"434F":null,"FF":"Off"}})");
  ApplyAgain();
  EXPECT_EQ(bus.Names().codes, (std::map<std::string, std::string>{{"FF", "Off"}}));
  Result("names.set", "{}");
  EXPECT_TRUE(bus.Names().codes.empty());
}

TEST_F(NamesTest, WhatIsNoCodeGetsNoName) {
  const auto refused = [this](const std::string& codes, const char* where, const char* detail) {
    ExpectProblem("names.merge", R"({"infrared":)" + codes + "}", 422, where, detail);
  };
  constexpr char kCode[] = "a code is named by its bytes in capitals, up to 35: 434F";
  for (const std::string bytes : {"", "4", "434f", "43 4F", "4G", "0x43"})
    refused(R"({")" + bytes + R"(":"x"})", ("infrared." + bytes).c_str(), kCode);
  refused(R"({")" + std::string(72, '0') + R"(":"x"})",
          ("infrared." + std::string(32, '0') + "...").c_str(), kCode);
  refused(R"({"434F":7})", "infrared.434F", "infrared.434F takes a text");
  refused(R"({"434F":""})", "infrared.434F", "a text of 0 characters; infrared.434F takes 1 to 64");
  std::string many = R"({"1000":"x")";
  for (int i = 0; i < 100; ++i) many += ",\"" + std::to_string(1001 + i) + R"(":"x")";
  refused(many + "}", "infrared", "101 codes; there may be 100");
  EXPECT_TRUE(store.documents.empty());
}

TEST_F(NamesTest, AChannelIsShownAsWhatItIsFor) {
  ExpectResult("setup.set",
               R"({"channels":{"5.0":{"as":"light"},"3.0":{"device_class":"door"},
                               "F.3":{"unit":"°C","max":100,"device_class":"temperature"}}})",
               R"({"cards":{}, "channels":{"3.0":{"device_class":"door"},"5.0":{"as":"light"},
                   "F.3":{"unit":"°C","max":100,"device_class":"temperature"}}})");
  EXPECT_EQ(bus.Names().Channel(5, 0).shown_as, "light");
  EXPECT_EQ(bus.Names().Channel(3, 0).device_class, "door");
  ExpectProblem("setup.merge", R"({"channels":{"5.0":{"as":"siren"}}})", 422, "channels.5.0.as",
                "channels.5.0.as takes switch, light or fan");
  ExpectProblem("setup.merge", R"({"channels":{"3.0":{"device_class":"gate"}}})", 422,
                "channels.3.0.device_class",
                "channels.3.0.device_class takes a device class of Home Assistant, such as door or "
                "temperature");
}

TEST_F(NamesTest, MarkupIsAName) {
  Result("names.merge", R"({"cards":{"5":"<script>alert(1)</script>"}})");
  EXPECT_EQ(bus.Names().Card(5).name, "<script>alert(1)</script>");
}

TEST_F(NamesTest, SetupIsMergedKeyByKey) {
  ExpectResult("setup.get", "{}",
               R"({"cards":{"E":{"rows":2}}, "channels":{"F.3":{"unit":"V","max":5}}})");
  ExpectResult("setup.merge",
               R"({"cards":{"E":{"rows":null},"4":{"signed":true,"keep":true}},
                   "channels":{"F.3":{"decimals":2,"hysteresis":0.02},"5.1":{"active":"high"}}})",
               R"({"cards":{"4":{"keep":true,"signed":true}},
                   "channels":{"5.1":{"active":"high"},
                     "F.3":{"unit":"V","max":5,"decimals":2,"hysteresis":0.02}}})");
  EXPECT_EQ(LastNote(), "hub operator: setup of cards and channels changed");
  EXPECT_EQ(bus.Names().Card(4).keep, true);
  EXPECT_EQ(bus.Names().Card(0xE).rows, 4);
  EXPECT_EQ(bus.Names().Channel(5, 1).active_high, true);
  EXPECT_EQ(bus.Names().Card(5).name, "Relays");
  ApplyAgain();
  EXPECT_EQ(bus.Names().Channel(0xF, 3).decimals, 2);
}

TEST_F(NamesTest, SetupIsReplacedAsAWhole) {
  ExpectResult("setup.set", R"({"channels":{"F.3":{"unit":"A","min":-1,"max":1.5}}})",
               R"({"cards":{}, "channels":{"F.3":{"unit":"A","min":-1,"max":1.5}}})");
  ExpectResult("setup.set", "{}", R"({"cards":{}, "channels":{}})");
}

TEST_F(NamesTest, AUnitIsShownAtOnce) {
  Report(0xF, 0, 255);
  Result("setup.merge", R"({"channels":{"F.0":{"unit":"V","max":5}}})");
  EXPECT_NE(Result("channels.get", R"({"id":"F.0"})").find(R"("value":5,"raw":255)"),
            std::string::npos);
}

TEST_F(NamesTest, SetupThatDoesNotFitChangesNothing) {
  const auto refused = [this](const char* parameters, const char* where, const char* detail) {
    ExpectProblem("setup.merge", parameters, 422, where, detail);
  };
  refused(
      R"({"channels":{"F.3":{"Unit":"V"}}})", "channels.F.3.Unit",
      "channels.F.3 has no \"Unit\"; it has unit, min, max, decimals, hysteresis, active, as and "
      "device_class");
  refused(R"({"channels":{"F.3":{"unit":5}}})", "channels.F.3.unit",
          "channels.F.3.unit takes a text");
  refused(R"({"channels":{"F.3":{"unit":"12345678901234567"}}})", "channels.F.3.unit",
          "a text of 17 characters; channels.F.3.unit takes 1 to 16");
  refused(R"({"channels":{"F.3":{"decimals":7}}})", "channels.F.3.decimals",
          "channels.F.3.decimals takes a number from 0 to 6");
  refused(R"({"channels":{"F.3":{"decimals":1.5}}})", "channels.F.3.decimals",
          "channels.F.3.decimals takes a whole number");
  refused(R"({"channels":{"F.3":{"hysteresis":-1}}})", "channels.F.3.hysteresis",
          "channels.F.3.hysteresis takes a number from 0 to 1000000000");
  refused(R"({"channels":{"F.3":{"min":"0"}}})", "channels.F.3.min",
          "channels.F.3.min takes a number from -1000000000 to 1000000000");
  refused(R"({"channels":{"F.3":{"min":5}}})", "channels.F.3",
          "channels.F.3: min and max are the same");
  refused(R"({"channels":{"5.1":{"active":"up"}}})", "channels.5.1.active",
          "channels.5.1.active takes high or low");
  refused(R"({"cards":{"4":{"keep":1}}})", "cards.4.keep", "cards.4.keep takes true or false");
  refused(R"({"cards":{"E":{"rows":0}}})", "cards.E.rows",
          "cards.E.rows takes a number from 1 to 8");
  refused(R"({"cards":{"E":{"columns":81}}})", "cards.E.columns",
          "cards.E.columns takes a number from 1 to 80");
  refused(R"({"cards":{"E":true}})", "cards.E", "cards.E takes an object");
  EXPECT_TRUE(store.documents.empty());
}

TEST_F(NamesTest, ThePageKeepsOrderHiddenCardsAndGroups) {
  ExpectResult("page.get", "{}", R"({"order":[], "hidden":[], "groups":[]})");
  ExpectResult("page.set",
               R"({"page":{"order":["5","E"],"groups":[{"name":"Hall","cards":["5","3"]}]}})",
               R"({"order":["5","E"], "hidden":[], "groups":[{"name":"Hall","cards":["5","3"]}]})");
  EXPECT_EQ(LastNote(), "hub operator: order and groups of the page changed");
  ExpectResult("page.set", R"({"page":{"hidden":["9"]}})",
               R"({"order":[], "hidden":["9"], "groups":[]})");
  ApplyAgain();
  ExpectResult("page.get", "{}", R"({"order":[], "hidden":["9"], "groups":[]})");
}

TEST_F(NamesTest, AChangeOfThePageIsPublished) {
  std::vector<model::Change> published;
  bus.Listen([&published](const model::Change& change) { published.push_back(change); });
  Result("page.set", R"({"page":{"order":["5"]}})");
  ASSERT_EQ(published.size(), 1U);
  EXPECT_TRUE(published[0].page);
  EXPECT_FALSE(published[0].bus);
}

TEST_F(NamesTest, WhatThePageCannotKeepChangesNothing) {
  const auto refused = [this](const std::string& page, const char* where, const char* detail) {
    ExpectProblem("page.set", R"({"page":)" + page + "}", 422, where, detail);
  };
  refused(R"({"order":"5"})", "order", "order takes a list");
  refused(R"({"hidden":[5]})", "hidden", R"(hidden takes addresses: "0" to "9", "A" to "F")");
  refused(R"({"order":["e"]})", "order", R"(order takes addresses: "0" to "9", "A" to "F")");
  refused(R"({"order":["5","E","5"]})", "order", "order has the card 5 twice");
  refused(R"({"colours":[]})", "colours",
          "page has no \"colours\"; it has order, hidden and groups");
  refused(R"({"groups":["Hall"]})", "groups", "groups takes a list of objects");
  refused(R"({"groups":[{"cards":[]}]})", "groups.name", "groups.name takes a text");
  refused(R"({"groups":[{"name":""}]})", "groups.name",
          "a text of 0 characters; groups.name takes 1 to 64");
  refused(R"({"groups":[{"name":"a\n"}]})", "groups.name",
          "groups.name holds a control character; only characters that can be seen go through");
  refused(R"({"groups":[{"name":"Hall","colour":1}]})", "groups.colour",
          "groups has no \"colour\"; it has name and cards");
  refused(R"({"groups":[{"name":"Hall","cards":["5"]},{"name":"Yard","cards":["5"]}]})",
          "groups.cards", "groups.cards has the card 5 twice");
  std::string many = R"({"name":"x"})";
  for (int i = 0; i < 16; ++i) many += R"(,{"name":"x"})";
  refused(R"({"groups":[)" + many + "]}", "groups", "17 groups; there may be 16");
  EXPECT_TRUE(store.documents.empty());
}

TEST_F(NamesTest, ABackupHoldsAllThatWasSettled) {
  Result("page.set", R"({"page":{"order":["5"]}})");
  store.documents["accounts"] = R"({"operator":"hash"})";
  const std::string backup = Result("backup.get");
  EXPECT_EQ(backup, Compact(R"({"version":1,
    "names":{"bus":"bench", "cards":{"5":"Relays"}, "channels":{"5.0":"Lamp"},
             "infrared":{}},
    "setup":{"cards":{"E":{"rows":2}}, "channels":{"F.3":{"unit":"V","max":5}}},
    "page":{"order":["5"], "hidden":[], "groups":[]}})"));
  Result("names.set", "{}");
  Result("setup.set", "{}");
  Result("page.set", R"({"page":{}})");
  EXPECT_EQ(Result("backup.put", backup), backup);
  EXPECT_EQ(LastNote(), "hub operator: a backup was put back");
  EXPECT_EQ(store.documents["accounts"], R"({"operator":"hash"})");
}

TEST_F(NamesTest, ABackupIsPutBackWholeOrNotAtAll) {
  const auto refused = [this](const char* parameters, const char* where, const char* detail) {
    ExpectProblem("backup.put", parameters, 422, where, detail);
  };
  refused(R"({"version":2,"names":{},"setup":{},"page":{}})", "version", "2; version takes 1 to 1");
  refused(R"({"version":1,"names":{},"setup":{}})", "page",
          "page is missing: as page.get gives it");
  refused(R"({"version":1,"names":{},"setup":{},"page":{},"accounts":{}})", "accounts",
          "backup.put has no \"accounts\"; it has version, names, setup and page");
  refused(R"({"version":1,"names":{"cards":{"0":"Arm"}},"setup":{"files":{}},"page":{}})", "files",
          "setup has no \"files\"; it has cards and channels");
  refused(R"({"version":1,"names":{"cards":{"../../etc/passwd":"x"}},"setup":{},"page":{}})",
          "cards.../../etc/passwd", "a card is named by its address: 0 to 9 or A to F");
  refused(R"({"version":1,"names":{"cards":{"0":"Arm"}},"setup":{},"page":{"order":["/"]}})",
          "order", R"(order takes addresses: "0" to "9", "A" to "F")");
  refused(R"({"version":1,"names":{},"setup":{},"page":{"script":"x"}})", "script",
          "page has no \"script\"; it has order, hidden and groups");
  EXPECT_TRUE(store.documents.empty());
  EXPECT_EQ(bus.Names().Card(0).name, "");
}

TEST_F(NamesTest, AKeptDocumentThatCannotBeReadIsPassedOverAndSaid) {
  for (const char* broken : {"{", "[]", R"({"cards":{"G":"x"}})", R"({"cards":[]})"}) {
    store.documents["names"] = broken;
    store.documents["setup"] = R"({"channels":{"F.3":{"decimals":1}}})";
    ApplyAgain();
    EXPECT_EQ(bus.Names().Card(5).name, "Relays") << broken;
    EXPECT_EQ(bus.Names().Channel(0xF, 3).decimals, 1);
    EXPECT_EQ(LastNote().substr(0, 57),
              "hub : the kept names cannot be read and are passed over: ");
  }
  store.documents["page"] = "{";
  ApplyAgain();
  ExpectResult("page.get", "{}", R"({"order":[], "hidden":[], "groups":[]})");
  EXPECT_EQ(LastNote().substr(0, 80),
            "hub : the kept order and groups of the page cannot be read and are passed over: ");
}

}  // namespace
}  // namespace hub::api
