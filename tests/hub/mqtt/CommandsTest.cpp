// Topics and payloads as calls of methods.
#include "mqtt/Commands.h"

#include <gtest/gtest.h>

#include "api/Json.h"
#include "hub/CardsOfEachKind.h"

namespace hub::mqtt {
namespace {

class CommandsTest : public testing::Test {
 protected:
  CommandsTest() { bus.SetCards(CardsOfEachKind()); }

  // "channels.set {...} use" a line, or "422 detail".
  std::string Read(const std::string& topic, const std::string& payload) {
    return Read({{topic, payload}, payload.size()});
  }
  std::string Read(const Arrived& arrived) {
    const auto read = ReadCommand(topics, bus, arrived);
    if (const auto* problem = std::get_if<api::Problem>(&read))
      return std::to_string(problem->status) + ' ' + problem->detail;
    std::string all;
    for (const Command& command : std::get<std::vector<Command>>(read))
      all += std::string(command.method->name) + ' ' + api::ToText(command.parameters) + ' ' +
             std::string(access::NameOf(command.role)) + '\n';
    return all;
  }

  Topics topics{"bench"};
  model::Bus bus{"3f9a21c0"};
};

struct Case {
  std::string topic;
  std::string payload;
  std::string read;
};

TEST_F(CommandsTest, EachTopicIsAMethod) {
  const std::string blank(20, ' ');
  const std::vector<Case> cases{
      {"5/0/set", "ON", R"(channels.set {"value":true,"id":"5.0"} use)"},
      {"5/15/set", "OFF", R"(channels.set {"value":false,"id":"5.15"} use)"},
      {"0/1/set", "200", R"(channels.set {"value":200,"id":"0.1"} use)"},
      {"0/1/set", "2.5", R"(channels.set {"value":2.5,"id":"0.1"} use)"},
      {"5/0/set", R"({"value":true,"pulse":500})",
       R"(channels.set {"value":true,"pulse":500,"id":"5.0"} use)"},
      {"E/row/1/set", "Tail of the cat",
       R"(lcd.write {"address":"E","row":1,"column":0,"text":"Tail of the cat     "} use)"},
      {"E/row/3/set", "",
       R"(lcd.write {"address":"E","row":3,"column":0,"text":")" + blank + R"("} use)"},
      {"E/light/set", "ON", R"(lcd.control {"address":"E","do":"light-on"} use)"},
      {"E/light/set", "OFF", R"(lcd.control {"address":"E","do":"light-off"} use)"},
      {"9/infrared/set", "434F", R"(ir.send {"address":"9","bytes":"434F"} use)"},
      {"bus/discover/set", "PRESS", R"(bus.discover {} admin)"},
      {"bus/pace/set", "50", R"(bus.pace {"pace":50} admin)"},
  };
  for (const Case& each : cases)
    EXPECT_EQ(Read("qelm/bench/" + each.topic, each.payload), each.read + '\n') << each.topic;
}

TEST_F(CommandsTest, ATextForTheGlassHasARowALine) {
  const std::string blank(20, ' ');
  const auto row = [](int number, const std::string& text) {
    return R"(lcd.write {"address":"E","row":)" + std::to_string(number) +
           R"(,"column":0,"text":")" + text + R"("} use)" + '\n';
  };
  EXPECT_EQ(Read("qelm/bench/E/text/set", "one\ntwo\n"), row(0, "one                 ") +
                                                             row(1, "two                 ") +
                                                             row(2, blank) + row(3, blank));
  EXPECT_EQ(Read("qelm/bench/E/text/set", "1\n2\n3\n4\n5"),
            "422 a text of 5 rows; the glass has 4");
  EXPECT_EQ(Read("qelm/bench/E/text/set", "one\n" + std::string(21, 'x')),
            "422 a text of 21 characters; row 1 has room for 20");
}

TEST_F(CommandsTest, ATextForWhatIsNoGlassIsLeftToTheMethod) {
  EXPECT_EQ(Read("qelm/bench/5/text/set", "one"),
            "lcd.write {\"address\":\"5\",\"row\":0,\"column\":0,\"text\":\"one\"} use\n");
  EXPECT_EQ(Read("qelm/bench/7/text/set", ""),
            "lcd.write {\"address\":\"7\",\"row\":0,\"column\":0,\"text\":\" \"} use\n");
}

TEST_F(CommandsTest, WhatDoesNotFitIsAProblem) {
  const std::vector<Case> cases{
      {"5/0/set", "", "400 this is no JSON: incomplete JSON"},
      {"5/0/set", "{\"value\":", "400 this is no JSON: incomplete JSON"},
      {"5/0/set", "\xFF", "400 this is no JSON: syntax error"},
      {"5/0/set", "ON\n", "422 the payload holds a control character"},
      {"5/0/set", "ON\r", "422 the payload holds a control character"},
      {"5/0/set", std::string("ON\0", 3), "422 the payload holds a control character"},
      {"E/light/set", "on", "422 this takes ON or OFF"},
      {"E/row/1/set", "caf\xC3\xA9", "422 the glass shows printable ASCII only"},
      {"E/row/1/set", "a\nb", "422 the payload holds a control character"},
      {"E/row/1/set", std::string(21, 'x'), "422 a text of 21 characters; row 1 has room for 20"},
      {"E/row/x/set", "a", "404 rows are row/0, row/1 and so on"},
      {"E/text/set", "a\rb", "422 the payload holds a control character"},
      {"5/lamp/set", "ON", "404 no command has this topic"},
      {"bus/0/set", "ON", "404 no command has this topic"},
      {"5/discover/set", "", "404 no command has this topic"},
      {"5//set", "ON", "404 no command has this topic"},
      {"/set", "ON", "404 no command has this topic"},
      {"set", "ON", "404 no command has this topic"},
  };
  for (const Case& each : cases)
    EXPECT_EQ(Read("qelm/bench/" + each.topic, each.payload), each.read) << each.topic;
  EXPECT_EQ(Read("qelm/other/5/0/set", "ON"), "404 no command has this topic");
}

TEST_F(CommandsTest, ALongPayloadIsNotRead) {
  EXPECT_EQ(Read({{"qelm/bench/5/0/set", ""}, 65'537}),
            "413 a payload of 65537 bytes; a command has at most 65536");
}

TEST_F(CommandsTest, ARetainedCommandIsThrownAway) {
  EXPECT_TRUE(Read({{"qelm/bench/5/0/set", "ON", true}, 2}).starts_with("409 a retained command"));
}

}  // namespace
}  // namespace hub::mqtt
