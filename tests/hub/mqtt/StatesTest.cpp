// Topics and payloads of a bus with a card of each kind.
#include "mqtt/States.h"

#include <gtest/gtest.h>

#include <map>

#include "hub/CardsOfEachKind.h"
#include "mqtt/NameCheck.h"
#include "mqtt/Payloads.h"

namespace hub::mqtt {
namespace {

class StatesTest : public testing::Test {
 protected:
  StatesTest() {
    names = CardsOfEachKind();
    bus.SetDaemon(
        {.state = model::DaemonState::kUp, .version = "1.20", .since = {}, .waiting_for = {}});
    bus.SetCards(names);
    states.MoveTo("bench");
    bus.Listen([this](const model::Change& change) { states.Take(change, now); });
    bus.Publish();
    publisher.Open();
    Take();
  }

  // What was told since the last time; the last payload of each topic.
  std::map<std::string, std::string> Take() {
    bus.Publish();
    std::map<std::string, std::string> told;
    while (const auto message = publisher.Next(now)) {
      told[message->topic] = message->payload;
      all[message->topic] = message->payload;
      publisher.Taken();
    }
    return told;
  }

  api::Messages count;
  Publisher publisher{count};
  protocol::CardNames names;
  model::Bus bus{"3f9a21c0"};
  States states{bus, publisher, "1.20"};
  model::SteadyTime now{};
  model::Time then{};
  std::map<std::string, std::string> all;
};

using Told = std::map<std::string, std::string>;

TEST_F(StatesTest, WhatIsNotKnownIsNone) {
  EXPECT_EQ(all.at("qelm/bench/5/0"), "None");
  EXPECT_EQ(all.at("qelm/bench/5/15"), "None");
  EXPECT_EQ(all.at("qelm/bench/0/5"), "None");
  EXPECT_EQ(all.at("qelm/bench/F/5"), "None");
  EXPECT_EQ(all.at("qelm/bench/8/0"), "None");
  EXPECT_FALSE(all.contains("qelm/bench/0/6"));
  EXPECT_FALSE(all.contains("qelm/bench/9/0"));  // codes are no states
}

TEST_F(StatesTest, AValueIsTold) {
  bus.TakeOutput(protocol::WriteBlock{5, 0, 0xFE}, then);
  EXPECT_EQ(Take().at("qelm/bench/5/0"), "ON");
  bus.TakeOutput(protocol::WriteBlock{5, 0, 0xFC}, then);
  EXPECT_EQ(Take(), (Told{{"qelm/bench/5/1", "ON"}}));
  bus.TakeOutput(protocol::WriteBlock{0, 2, 77}, then);
  EXPECT_EQ(Take(), (Told{{"qelm/bench/0/2", "77"}}));
  bus.TakeInput({0xF, 3, 255}, then);
  EXPECT_EQ(Take(), (Told{{"qelm/bench/F/3", "255"}}));
}

TEST_F(StatesTest, AValueIsInItsUnit) {
  bus.TakeInput({0xF, 3, 128}, then);
  Take();
  model::Settings settings;
  model::ChannelSettings& knob = settings.channels[{0xF, 3}];
  knob.unit = "V";
  knob.max = 5;
  knob.decimals = 2;
  bus.Apply(settings);
  EXPECT_EQ(Take().at("qelm/bench/F/3"), "2.51");
}

TEST_F(StatesTest, AKeyIsAnEventAndALevel) {
  bus.TakeInput({8, 0, 0x00}, then);
  Take();
  bus.TakeInput({8, 0, 0x05}, then);
  EXPECT_EQ(Take(), (Told{{"qelm/bench/8/0", "5"},
                          {"qelm/bench/8/event", R"({"event_type":"press","code":5})"}}));
  bus.TakeInput({8, 0, 0x45}, then);
  EXPECT_EQ(Take().at("qelm/bench/8/event"), R"({"event_type":"right","code":null})");
}

TEST_F(StatesTest, TheGlassIsTold) {
  bus.TakeOutput(protocol::WriteText{0xE, 3, 1, "Tail of the cat"}, then);
  bus.TakeOutput(protocol::ControlLcd{0xE, protocol::LcdControl::kLightOn}, then);
  EXPECT_EQ(Take(), (Told{{"qelm/bench/E/glass",
                           R"({"rows":["                    ","   Tail of the cat  ",)"
                           R"("                    ","                    "],)"
                           R"("light":true,"cursor":null,"blink":null})"}}));
}

TEST_F(StatesTest, ACardIsOnlineWhileItAnswers) {
  EXPECT_EQ(all.at("qelm/bench/5/status"), "online");
  names[5] = "CARD?";
  bus.SetCards(names);
  EXPECT_EQ(Take().at("qelm/bench/5/status"), "offline");
  EXPECT_EQ(all.at("qelm/bench/3/status"), "online");
  bus.SetAdapter({.state = model::AdapterState::kDown, .device = {}, .version = {}});
  EXPECT_EQ(Take().at("qelm/bench/3/status"), "offline");
  bus.SetAdapter({.state = model::AdapterState::kUp, .device = {}, .version = {}});
  EXPECT_EQ(Take().at("qelm/bench/3/status"), "online");
  bus.SetDaemon({});
  EXPECT_EQ(Take().at("qelm/bench/3/status"), "offline");
}

TEST_F(StatesTest, ACardThatHasGoneLeavesItsStatus) {
  names[5] = "EMPTY";
  bus.SetCards(names);
  const Told told = Take();
  EXPECT_EQ(told.at("qelm/bench/5/status"), "offline");
  EXPECT_EQ(told.at("qelm/bench/5/0"), "");
  EXPECT_EQ(told.at("qelm/bench/5/15"), "");
  EXPECT_EQ(told.at("qelm/bench/bus").find(R"("address":"5")"), std::string::npos);
}

TEST_F(StatesTest, ACardOfAnotherKindHasItsOwnChannels) {
  names[0xE] = "6 channel RC SERVO CONTROLLER";
  bus.SetCards(names);
  const Told told = Take();
  EXPECT_EQ(told.at("qelm/bench/E/glass"), "");
  EXPECT_EQ(told.at("qelm/bench/E/5"), "None");
}

TEST_F(StatesTest, TheBusSaysWhatItIs) {
  names.fill("EMPTY");
  names[5] = "16 channel DIGITAL OUTPUT";
  bus.SetCards(names);
  model::Settings settings;
  settings.bus_name = "bench";
  settings.cards[5].name = "Relays";
  settings.channels[{5, 7}].name = "Lamp";
  bus.Apply(settings);
  bus.SetPace(50);
  EXPECT_EQ(Take().at("qelm/bench/bus"),
            R"({"id":"3f9a21c0","name":"bench","version":"1.20",)"
            R"("daemon":{"state":"up","version":"1.20","since":null,"waiting_for":null},)"
            R"("adapter":{"state":"unknown","device":null,"version":null},)"
            R"("pace":50,"polling":null,"virtual":false,"cards":)"
            R"([{"address":"5","kind":"digital-output","name":"Relays","state":"present",)"
            R"("channels":{"7":{"name":"Lamp","unit":null,"min":null,"max":null}}}]})");
}

TEST_F(StatesTest, HowTheBrokerStandsIsNotToldToIt) {
  bus.SetBroker(model::Broker{model::BrokerState::kUp, "here", ""});
  EXPECT_EQ(Take(), Told{});
}

TEST_F(StatesTest, AnotherNameMovesTheTopics) {
  publisher.Keep("homeassistant/device/x/config", "{}");
  Take();
  states.MoveTo("attic");
  const Told told = Take();
  EXPECT_EQ(told.at("qelm/bench/bus"), "");
  EXPECT_EQ(told.at("qelm/bench/5/status"), "");
  EXPECT_EQ(told.at("qelm/bench/5/0"), "");
  EXPECT_EQ(told.at("qelm/attic/5/0"), "None");
  EXPECT_FALSE(told.contains("homeassistant/device/x/config"));
}

TEST(TopicName, HasOnlyWhatFits) {
  EXPECT_EQ(TopicName("bench_2-a"), "bench_2-a");
  EXPECT_EQ(TopicName("my bench/+#"), "my-bench---");
  EXPECT_EQ(TopicName(""), "bus");
  EXPECT_EQ(TopicName(std::string(40, 'x')), std::string(32, 'x'));
}

TEST(Payloads, ALongTopicIsCutBetweenCharacters) {
  const std::string topic = std::string(127, 'a') + "\xC3\xA9" + "rest";
  EXPECT_EQ(ErrorPayload(topic, api::ProblemOf(404, "no")),
            R"({"topic":")" + std::string(127, 'a') +
                R"(","title":"not there","status":404,"detail":"no","where":null})");
}

class NameCheckTest : public testing::Test {
 protected:
  void Has(const std::string& topic, const std::string& payload) {
    check.Take({{topic, payload, true}, payload.size()});
  }

  Topics topics{"bench"};
  NameCheck check{topics, "11111111"};
};

TEST_F(NameCheckTest, AnotherHubThatIsOnlineHasTheName) {
  EXPECT_EQ(check.Owner(), std::nullopt);
  Has("qelm/bench/bus", R"({"id":"22222222"})");
  EXPECT_EQ(check.Owner(), std::nullopt);
  Has("qelm/bench/status", "online");
  EXPECT_EQ(check.Owner(), "22222222");
  Has("qelm/bench/status", "offline");
  EXPECT_EQ(check.Owner(), std::nullopt);
}

TEST_F(NameCheckTest, ItIsOursWhereWeWereOnline) {
  Has("qelm/bench/status", "online");
  Has("qelm/bench/bus", R"({"id":"11111111"})");
  EXPECT_EQ(check.Owner(), std::nullopt);
}

TEST_F(NameCheckTest, WhatIsNoHubHasNoName) {
  Has("qelm/bench/status", "online");
  for (const char* payload :
       {"", "{", "[]", R"({"id":5})", R"({"id":""})", R"({"id":"2222222"})",
        R"({"id":"222222222"})", R"({"id":"2222222A"})", R"({"id":"2222222g"})",
        R"({"id":"22\n22222"})", R"({"id":"another hub, or none"})"}) {
    Has("qelm/bench/bus", payload);
    EXPECT_EQ(check.Owner(), std::nullopt) << payload;
  }
}

TEST_F(NameCheckTest, CommandsAreNoLeftovers) {
  Has("qelm/bench/5/0", "ON");
  Has("qelm/bench/5/0/set", "ON");
  EXPECT_EQ(check.Leftovers(), std::set<std::string>{"qelm/bench/5/0"});
}

}  // namespace
}  // namespace hub::mqtt
