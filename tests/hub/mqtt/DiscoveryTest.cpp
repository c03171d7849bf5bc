// Whole messages, written out by hand.
#include "mqtt/Discovery.h"

#include <gtest/gtest.h>

#include <boost/json/parse.hpp>
#include <string>
#include <utility>

#include "Accepted.h"
#include "HubBus.h"

namespace hub::mqtt {
namespace {

namespace json = boost::json;

// The text once for each number, "#" being the number.
std::string Each(int first, int last, const std::string& text) {
  std::string all;
  for (int number = first; number <= last; ++number) {
    if (!all.empty()) all += ',';
    for (const char letter : text)
      all += letter == '#' ? std::to_string(number) : std::string(1, letter);
  }
  return all;
}

model::ChannelSettings Unit(std::string name, std::string unit, double min, double max,
                            int decimals) {
  model::ChannelSettings settings;
  settings.name = std::move(name);
  settings.unit = std::move(unit);
  settings.min = min;
  settings.max = max;
  settings.decimals = decimals;
  return settings;
}

class DiscoveryTest : public testing::Test {
 protected:
  std::string Message(unsigned address) const {
    const auto device = CardDevice(house.AsBoard(), address);
    if (!device) return "";
    return ToPayload(Announce(*device, "3f9a21c0", Discovery::kDevice).at(0), {});
  }

  json::object Component(unsigned address, const std::string& id) const {
    const json::value message = json::parse(Message(address));
    return message.at("components").at(id).as_object();
  }

  // Members in any order.
  void ExpectMessage(unsigned address, const std::string& expected) const {
    EXPECT_EQ(json::parse(Message(address)), json::parse(expected));
  }

  static std::string CardHead(const std::string& letter, const std::string& name,
                              const std::string& model) {
    return R"({"device":{"identifiers":["qelm_3f9a21c0_)" + letter + R"("],"name":")" + name +
           R"(","model":")" + model +
           R"(","manufacturer":"qelm","via_device":"qelm_3f9a21c0"},
              "origin":{"name":"qelm-hub","sw_version":"0.3.0"},
              "availability":[{"topic":"qelm/bench/status"},{"topic":"qelm/bench/)" +
           letter + R"(/status"}],"availability_mode":"all","qos":1,"components":{)";
  }

  HubBus house;
};

TEST_F(DiscoveryTest, OutputsAreSwitches) {
  ExpectMessage(5, CardHead("5", "Relays", "Digital output card") +
                       R"("out0":{"platform":"switch","unique_id":"qelm_3f9a21c0_5_0",
                            "default_entity_id":"switch.bench_5_0","name":"Lamp",
                            "state_topic":"qelm/bench/5/0","command_topic":"qelm/bench/5/0/set"},)" +
                       Each(1, 15,
                            R"("out#":{"platform":"switch","unique_id":"qelm_3f9a21c0_5_#",
                            "default_entity_id":"switch.bench_5_#","name":"Line #",
                            "state_topic":"qelm/bench/5/#","command_topic":"qelm/bench/5/#/set"})") +
                       "}}");
}

TEST_F(DiscoveryTest, AnOutputIsALightOrAFanWhereTheUserSaysSo) {
  house.Change([](model::Settings& settings) {
    settings.channels[{5, 0}].shown_as = "light";
    settings.channels[{5, 1}].shown_as = "fan";
    settings.channels[{5, 2}].shown_as = "switch";
  });
  EXPECT_EQ(Component(5, "light0"), json::parse(R"({
      "platform":"light","unique_id":"qelm_3f9a21c0_5_0","default_entity_id":"light.bench_5_0",
      "name":"Lamp","state_topic":"qelm/bench/5/0","command_topic":"qelm/bench/5/0/set"})"));
  EXPECT_EQ(Component(5, "fan1"), json::parse(R"({
      "platform":"fan","unique_id":"qelm_3f9a21c0_5_1","default_entity_id":"fan.bench_5_1",
      "name":"Line 1","state_topic":"qelm/bench/5/1","command_topic":"qelm/bench/5/1/set"})"));
  EXPECT_EQ(Component(5, "out2").at("platform"), "switch");
  EXPECT_EQ(Message(5).find(R"("out0")"), std::string::npos);
}

TEST_F(DiscoveryTest, InputsAreBinarySensors) {
  house.Change([](model::Settings& settings) {
    settings.channels[{3, 15}].name = "Gate";
    settings.channels[{3, 15}].device_class = "door";
    settings.channels[{3, 14}].device_class = "temperature";  // of a level
  });
  ExpectMessage(3, CardHead("3", "bench 3", "Digital input card") +
                       Each(0, 14, R"("in#":{"platform":"binary_sensor",
                            "unique_id":"qelm_3f9a21c0_3_#","name":"Line #",
                            "default_entity_id":"binary_sensor.bench_3_#",
                            "state_topic":"qelm/bench/3/#"})") +
                       R"(,"in15":{"platform":"binary_sensor","unique_id":"qelm_3f9a21c0_3_15",
                            "default_entity_id":"binary_sensor.bench_3_15","name":"Gate",
                            "state_topic":"qelm/bench/3/15","device_class":"door"}}})");
}

TEST_F(DiscoveryTest, LevelsAreSensors) {
  house.Change([](model::Settings& settings) {
    settings.channels[{15, 5}] = Unit("Supply", "V", 0, 5, 2);
    settings.channels[{15, 5}].device_class = "voltage";
  });
  ExpectMessage(15, CardHead("F", "bench F", "Analogue input card") +
                        Each(0, 4, R"("level#":{"platform":"sensor",
                             "unique_id":"qelm_3f9a21c0_F_#","name":"Input #",
                             "default_entity_id":"sensor.bench_f_#",
                             "state_topic":"qelm/bench/F/#","state_class":"measurement",
                             "suggested_display_precision":0})") +
                        R"(,"level5":{"platform":"sensor","unique_id":"qelm_3f9a21c0_F_5",
                             "default_entity_id":"sensor.bench_f_5","name":"Supply",
                             "state_topic":"qelm/bench/F/5","state_class":"measurement",
                             "suggested_display_precision":2,"unit_of_measurement":"V",
                             "device_class":"voltage"}}})");
}

TEST_F(DiscoveryTest, ADeviceClassIsLeftOutInAUnitThatIsNoneOfIts) {
  house.Change([](model::Settings& settings) {
    settings.channels[{15, 0}] = Unit("", "V", 0, 5, 2);
    settings.channels[{15, 0}].device_class = "temperature";
    settings.channels[{15, 1}].device_class = "temperature";
    settings.channels[{15, 2}].device_class = "ph";
  });
  EXPECT_FALSE(Component(15, "level0").contains("device_class"));
  EXPECT_FALSE(Component(15, "level1").contains("device_class"));
  EXPECT_EQ(Component(15, "level2").at("device_class"), "ph");
}

TEST_F(DiscoveryTest, ServosAreNumbers) {
  house.Change([](model::Settings& settings) {
    settings.channels[{0, 5}] = Unit("Elbow", "°", 90, -90, 1);
  });
  ExpectMessage(0, CardHead("0", "bench 0", "Servo card") +
                       Each(0, 4, R"("servo#":{"platform":"number",
                            "unique_id":"qelm_3f9a21c0_0_#","name":"Servo #",
                            "default_entity_id":"number.bench_0_#",
                            "state_topic":"qelm/bench/0/#","command_topic":"qelm/bench/0/#/set",
                            "min":0,"max":255,"step":1,"mode":"slider"})") +
                       R"(,"servo5":{"platform":"number","unique_id":"qelm_3f9a21c0_0_5",
                            "default_entity_id":"number.bench_0_5","name":"Elbow",
                            "state_topic":"qelm/bench/0/5","command_topic":"qelm/bench/0/5/set",
                            "min":-90,"max":90,"step":0.1,"mode":"slider",
                            "unit_of_measurement":"°"}}})");
}

TEST_F(DiscoveryTest, DrivesAreNumbersAndMayHaveASign) {
  house.Change([](model::Settings& settings) { settings.cards[4].is_signed = true; });
  ExpectMessage(4, CardHead("4", "bench 4", "Motor card") +
                       Each(0, 2, R"("drive#":{"platform":"number",
                            "unique_id":"qelm_3f9a21c0_4_#","name":"Drive #",
                            "default_entity_id":"number.bench_4_#",
                            "state_topic":"qelm/bench/4/#","command_topic":"qelm/bench/4/#/set",
                            "min":-100,"max":100,"step":1,"mode":"slider"})") +
                       R"(,"control3":{"platform":"number","unique_id":"qelm_3f9a21c0_4_3",
                            "default_entity_id":"number.bench_4_3","name":"Control byte 3",
                            "state_topic":"qelm/bench/4/3","command_topic":"qelm/bench/4/3/set",
                            "min":0,"max":255,"step":1,"mode":"slider"}}})");
}

TEST_F(DiscoveryTest, ADisplayHasATextARowANoteAndALight) {
  house.Change([](model::Settings& settings) { settings.cards[14].rows = 2; });
  ExpectMessage(14, CardHead("E", "bench E", "Display card") +
                        Each(0, 1, R"("row#":{"platform":"text",
                             "unique_id":"qelm_3f9a21c0_E_row#","name":"Row #",
                             "default_entity_id":"text.bench_e_row#",
                             "state_topic":"qelm/bench/E/glass",
                             "value_template":"{{ value_json.rows[#] }}",
                             "command_topic":"qelm/bench/E/row/#/set",
                             "pattern":"^[ -~]*$","max":20})") +
                        R"(,"text":{"platform":"notify","unique_id":"qelm_3f9a21c0_E_text",
                             "default_entity_id":"notify.bench_e_text","name":"Glass",
                             "command_topic":"qelm/bench/E/text/set"},
                            "light":{"platform":"switch","unique_id":"qelm_3f9a21c0_E_light",
                             "default_entity_id":"switch.bench_e_light","name":"Light",
                             "state_topic":"qelm/bench/E/glass",
                             "value_template":"{{ 'None' if value_json.light is none else 'ON' if value_json.light else 'OFF' }}",
                             "command_topic":"qelm/bench/E/light/set"}}})");
}

TEST_F(DiscoveryTest, KeysAreAnEventAndTriggers) {
  ExpectMessage(8, CardHead("8", "bench 8", "Key card") +
                       R"("keys":{"platform":"event","unique_id":"qelm_3f9a21c0_8_0",
                            "default_entity_id":"event.bench_8_0","name":"Keys",
                            "state_topic":"qelm/bench/8/event",
                            "event_types":["press","release","left","right"]},)" +
                       Each(1, 63, R"("press#":{"platform":"device_automation",
                            "unique_id":"qelm_3f9a21c0_8_press#","automation_type":"trigger",
                            "type":"button_short_press","subtype":"key_#",
                            "topic":"qelm/bench/8/event",
                            "value_template":"{{ value_json.event_type }} {{ value_json.code }}",
                            "payload":"press #"})") +
                       R"(,"turn_left":{"platform":"device_automation",
                            "unique_id":"qelm_3f9a21c0_8_turn_left","automation_type":"trigger",
                            "type":"left","subtype":"encoder","topic":"qelm/bench/8/event",
                            "value_template":"{{ value_json.event_type }}","payload":"left"},
                          "turn_right":{"platform":"device_automation",
                            "unique_id":"qelm_3f9a21c0_8_turn_right","automation_type":"trigger",
                            "type":"right","subtype":"encoder","topic":"qelm/bench/8/event",
                            "value_template":"{{ value_json.event_type }}","payload":"right"}}})");
}

TEST_F(DiscoveryTest, InfraredIsATextAndAButtonForEachNamedCode) {
  house.Change([](model::Settings& settings) { settings.codes["434F"] = "TV on"; });
  ExpectMessage(9, CardHead("9", "bench 9", "Infrared card") +
                       R"("code":{"platform":"text","unique_id":"qelm_3f9a21c0_9_0",
                            "default_entity_id":"text.bench_9_0","name":"Code",
                            "command_topic":"qelm/bench/9/infrared/set",
                            "pattern":"^([0-9A-Fa-f]{2}){1,35}$","min":2,"max":70},
                          "code_434F":{"platform":"button","unique_id":"qelm_3f9a21c0_9_434F",
                            "default_entity_id":"button.bench_9_434f","name":"TV on",
                            "command_topic":"qelm/bench/9/infrared/set",
                            "payload_press":"434F"}}})");
}

TEST_F(DiscoveryTest, TheBusIsADeviceOfItsOwn) {
  const Device device = BusDevice(house.AsBoard());
  const Announcement announcement = Announce(device, "3f9a21c0", Discovery::kDevice).at(0);
  EXPECT_EQ(announcement.topic, "homeassistant/device/qelm_3f9a21c0/config");
  EXPECT_EQ(json::parse(ToPayload(announcement, {})), json::parse(R"({
      "device":{"identifiers":["qelm_3f9a21c0"],"name":"bench","model":"Card bus",
                "manufacturer":"qelm"},
      "origin":{"name":"qelm-hub","sw_version":"0.3.0"},
      "availability":[{"topic":"qelm/bench/status"}],"availability_mode":"all","qos":1,
      "components":{
        "adapter":{"platform":"binary_sensor","unique_id":"qelm_3f9a21c0_adapter",
          "default_entity_id":"binary_sensor.bench_adapter","name":"Adapter",
          "entity_category":"diagnostic","device_class":"connectivity",
          "state_topic":"qelm/bench/bus",
          "value_template":"{{ {'up': 'ON', 'down': 'OFF'}.get(value_json.adapter.state, 'None') }}"},
        "commands_rate":{"platform":"sensor","unique_id":"qelm_3f9a21c0_commands_rate",
          "default_entity_id":"sensor.bench_commands_rate","name":"Commands",
          "entity_category":"diagnostic","state_topic":"qelm/bench/rates",
          "value_template":"{{ value_json.commands }}","state_class":"measurement",
          "unit_of_measurement":"1/s","suggested_display_precision":1},
        "discover":{"platform":"button","unique_id":"qelm_3f9a21c0_discover",
          "default_entity_id":"button.bench_discover","name":"Discover cards",
          "command_topic":"qelm/bench/bus/discover/set"},
        "pace":{"platform":"number","unique_id":"qelm_3f9a21c0_pace",
          "default_entity_id":"number.bench_pace","name":"Pace","entity_category":"config",
          "state_topic":"qelm/bench/bus","value_template":"{{ value_json.pace }}",
          "command_topic":"qelm/bench/bus/pace/set","min":1,"max":100,"step":1,"mode":"slider",
          "unit_of_measurement":"%"},
        "reports_rate":{"platform":"sensor","unique_id":"qelm_3f9a21c0_reports_rate",
          "default_entity_id":"sensor.bench_reports_rate","name":"Reports",
          "entity_category":"diagnostic","state_topic":"qelm/bench/rates",
          "value_template":"{{ value_json.reports }}","state_class":"measurement",
          "unit_of_measurement":"1/s","suggested_display_precision":1}}})"));
}

TEST_F(DiscoveryTest, ACardWithoutEntitiesIsNoDevice) {
  house.Plug(1, "UNIDENTIFIED");
  house.Plug(2, "CARD?");
  for (const unsigned address : {1, 2, 6}) EXPECT_EQ(Message(address), "");
  house.Plug(5, "CARD?");
  EXPECT_NE(Message(5), "");
}

TEST_F(DiscoveryTest, AnEntityDoesNotRepeatItsDevicesName) {
  house.Change([](model::Settings& settings) {
    settings.channels[{5, 0}].name = "Relays";
    settings.channels[{5, 1}].name = "Relays of the hall";
    settings.channels[{5, 2}].name = "Relaysore";
  });
  EXPECT_TRUE(Component(5, "out0").at("name").is_null());
  EXPECT_EQ(Component(5, "out1").at("name"), "of the hall");
  EXPECT_EQ(Component(5, "out2").at("name"), "Relaysore");
}

TEST_F(DiscoveryTest, AMessageAnEntityIsForOthers) {
  const auto announcements =
      Announce(*CardDevice(house.AsBoard(), 5), "3f9a21c0", Discovery::kComponents);
  ASSERT_EQ(announcements.size(), 16U);
  EXPECT_EQ(announcements[0].topic, "homeassistant/switch/qelm_3f9a21c0/5_out0/config");
  EXPECT_EQ(json::parse(ToPayload(announcements[0], {})), json::parse(R"({
      "unique_id":"qelm_3f9a21c0_5_0","default_entity_id":"switch.bench_5_0","name":"Lamp",
      "state_topic":"qelm/bench/5/0","command_topic":"qelm/bench/5/0/set",
      "device":{"identifiers":["qelm_3f9a21c0_5"],"name":"Relays","model":"Digital output card",
                "manufacturer":"qelm","via_device":"qelm_3f9a21c0"},
      "origin":{"name":"qelm-hub","sw_version":"0.3.0"},
      "availability":[{"topic":"qelm/bench/status"},{"topic":"qelm/bench/5/status"}],
      "availability_mode":"all","qos":1})"));
}

TEST_F(DiscoveryTest, WhatIsRemovedIsNamedByItsPlatformAlone) {
  const Announcement announcement{"t", {{"qos", 1}}, {{"in0", {{"platform", "binary_sensor"}}}}};
  EXPECT_EQ(ToPayload(announcement, {{"out0", "switch"}}),
            R"({"qos":1,"components":{"in0":{"platform":"binary_sensor"},"out0":{"p":"switch"}}})");
}

TEST_F(DiscoveryTest, WhatAMessageHasIsReadFromAnyText) {
  constexpr char kDevice[] = "homeassistant/device/qelm_3f9a21c0_5/config";
  constexpr char kComponents[] =
      R"({"components":{"out0":{"platform":"switch","unique_id":"x"},
                                     "out1":{"p":"switch"},"out2":7}})";
  EXPECT_EQ(ComponentsOf(kDevice, kComponents), (Platforms{{"out0", "switch"}}));
  for (const char* text :
       {"", "{", "[]", "7", R"({"components":[]})", R"({"components":{"a":[]}})"})
    EXPECT_TRUE(ComponentsOf(kDevice, text).empty()) << text;
  for (const char* topic : {"homeassistant/switch/qelm_3f9a21c0/5_out0/config",
                            "homeassistant/device/qelm_3f9a21c0/5_out0/config"})
    EXPECT_TRUE(ComponentsOf(topic, kComponents).empty()) << topic;
}

TEST_F(DiscoveryTest, ATopicSaysWhichCardItIsAbout) {
  const auto card = [](const char* topic) { return CardOf(topic, "3f9a21c0"); };
  EXPECT_EQ(card("homeassistant/device/qelm_3f9a21c0_F/config"), 15U);
  EXPECT_EQ(card("homeassistant/switch/qelm_3f9a21c0/5_out0/config"), 5U);
  EXPECT_EQ(card("homeassistant/device/qelm_3f9a21c0/config"), std::nullopt);
  EXPECT_EQ(card("homeassistant/number/qelm_3f9a21c0/pace/config"), std::nullopt);
  EXPECT_EQ(card("homeassistant/device/qelm_00000000_F/config"), std::nullopt);
}

// Whatever is set, and in both forms.
TEST_F(DiscoveryTest, EveryMessageIsTaken) {
  house.Change([](model::Settings& settings) {
    settings.bus_name = "\"Bänk\" \\ <1>";
    settings.codes[std::string(70, 'F')] = "longest";
    for (unsigned number = 0; number < 16; ++number) {
      model::ChannelSettings& line = settings.channels[{5, number}];
      line.shown_as = number % 2 == 0 ? "light" : "fan";
      settings.channels[{3, number}].device_class = number % 2 == 0 ? "door" : "ph";
      settings.channels[{15, number}] = Unit("x", "°C", 1e9, -1e9, static_cast<int>(number % 7));
      settings.channels[{15, number}].device_class = number % 2 == 0 ? "temperature" : "door";
      settings.channels[{0, number}] = Unit("y", "mm", 0, 0.5, static_cast<int>(number % 7));
    }
    settings.cards[14].columns = 40;
  });
  for (const Discovery form : {Discovery::kDevice, Discovery::kComponents}) {
    const Wanted wanted = WantedOf(house.AsBoard(), form, {});
    EXPECT_EQ(wanted.announcements.size(), form == Discovery::kDevice ? 9U : 127U);
    for (const Announcement& announcement : wanted.announcements)
      EXPECT_EQ(FaultsOfMessage(announcement.topic, ToPayload(announcement, {})), Faults{})
          << announcement.topic;
  }
  EXPECT_TRUE(WantedOf(house.AsBoard(), Discovery::kOff, {}).announcements.empty());
}

}  // namespace
}  // namespace hub::mqtt
