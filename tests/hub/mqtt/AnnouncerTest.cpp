// The hub, a broker and Home Assistant over hours, in a moment: after whatever happens there are in
// Home Assistant the entities of the bus, and no others.
#include "mqtt/Announcer.h"

#include <gtest/gtest.h>

#include <memory>
#include <random>

#include "HomeAssistantModel.h"
#include "HubBus.h"

namespace hub::mqtt {
namespace {

using namespace std::chrono_literals;

class AnnouncerTest : public testing::Test {
 protected:
  AnnouncerTest() { StartHub(); }

  // ---- what happens ----

  void StartHub() {
    announcer = std::make_unique<Announcer>(house->bus.Id(), [this] { return Chance(); });
    departures = {};
    kept.clear();
    announcer->Begin(now);
    for (const auto& [topic, payload] : std::map(retained))
      if (IsOurs(topic)) announcer->Hear(topic, payload, now);
    Publish("qelm/bench/status", "online");
  }
  // It comes back with the same store, but has seen nothing of the bus yet.
  void RestartHub(protocol::CardNames cards) {
    house = std::make_unique<HubBus>(house->bus.Names());
    house->cards = cards;
    StartHub();
  }
  void StartDaemon() {
    house->StartDaemon();
    Changed();
  }
  void Plug(unsigned address, const std::string& kind) {
    house->Plug(address, kind);
    Changed();
  }
  void Pull(unsigned address) { Plug(address, "EMPTY"); }
  void Settle(auto change) {
    house->Change(change);
    Changed();
  }
  void Changed() {
    departures.Look(house->bus, now);
    announcer->Touch(now);
  }
  void Use(Discovery form) {
    discovery = form;
    announcer->Touch(now);
  }
  void RestartHomeAssistant() {
    home.Restart();
    for (const auto& [topic, payload] : std::map(retained)) home.Take(topic, payload, now);
    announcer->Greet(now);
  }
  void DeleteEntity(const std::string& topic) { Publish(topic, ""); }

  void Pass(std::chrono::milliseconds time) {
    for (const auto end = now + time; now < end; now += 50ms) {
      const auto gone = departures.Gone();
      departures.Look(house->bus, now);
      if (gone != departures.Gone()) announcer->Touch(now);
      if (!announcer->Due() || *announcer->Due() > now) continue;
      const Wanted wanted = WantedOf(house->AsBoard(), discovery, departures.Gone());
      for (const Announcer::Deed& deed : announcer->Act(wanted, now)) Do(deed);
    }
  }

  // ---- what is seen ----

  void ExpectTheBus() {
    HomeAssistantModel expected;
    for (const Announcement& each :
         WantedOf(house->AsBoard(), discovery, departures.Gone()).announcements)
      expected.Take(each.topic, ToPayload(each, {}), now);
    EXPECT_EQ(Keys(home), Keys(expected));
    EXPECT_EQ(home.All() == expected.All(), true);
    EXPECT_EQ(home.faults, Faults{});
  }
  static std::string Keys(const HomeAssistantModel& model) {
    std::string keys;
    for (const auto& [key, entity] : model.All()) keys += key + '\n';
    return keys;
  }
  bool Has(const std::string& entity) const { return home.All().contains(entity); }
  std::string At(const std::string& topic) const {
    const auto found = retained.find(topic);
    return found == retained.end() ? "" : found->second;
  }

  double Chance() { return std::uniform_real_distribution<double>()(random); }

  static constexpr char kRelays[] = "homeassistant/device/qelm_3f9a21c0_5/config";

  std::mt19937 random{7};
  model::SteadyTime now{1h};
  std::unique_ptr<HubBus> house = std::make_unique<HubBus>();
  Discovery discovery = Discovery::kDevice;
  std::unique_ptr<Announcer> announcer;
  Departures departures;
  HomeAssistantModel home;
  std::map<std::string, std::string> retained;  // by the broker
  std::map<std::string, std::string> kept;      // by the publisher, which tells it again
  int published = 0;                            // to Home Assistant

 private:
  static bool IsOurs(const std::string& topic) { return topic.starts_with("homeassistant/"); }

  void Publish(const std::string& topic, const std::string& payload) {
    if (payload.empty())
      retained.erase(topic);
    else
      retained[topic] = payload;
    if (IsOurs(topic)) ++published;
    home.Take(topic, payload, now);
    if (IsOurs(topic)) announcer->Hear(topic, payload, now);
  }

  void Do(const Announcer::Deed& deed) {
    switch (deed.what) {
      case Announcer::Deed::kKeep:
        kept[deed.topic] = deed.payload;
        return Publish(deed.topic, deed.payload);
      case Announcer::Deed::kTakeBack:
        return Publish(deed.topic, "");
      case Announcer::Deed::kTellAgain:
        return Publish(deed.topic, kept.at(deed.topic));
      case Announcer::Deed::kTellStates:
        return TellStates();
    }
  }
  void TellStates() {
    Publish("qelm/bench/status", "online");
    for (unsigned address = 0; address < 16; ++address) {
      const std::string card = std::string("qelm/bench/") + "0123456789ABCDEF"[address];
      Publish(card + "/status", "online");
      for (unsigned number = 0; number < 16; ++number)
        Publish(card + '/' + std::to_string(number), "OFF");
    }
  }
};

TEST_F(AnnouncerTest, AfterTheStartAllEntitiesAreThere) {
  Pass(3s);
  ExpectTheBus();
  EXPECT_TRUE(Has("switch qelm_3f9a21c0_5_0"));
  EXPECT_EQ(published, 9);
  Pass(1h);
  EXPECT_EQ(published, 9);
}

TEST_F(AnnouncerTest, TheBusIsAnnouncedFirstAfterAPauseOfChance) {
  const auto begin = now;
  const auto due = announcer->Due();
  ASSERT_TRUE(due);
  EXPECT_GE(*due - begin, 500ms);
  EXPECT_LE(*due - begin, 2000ms);
  const Wanted wanted = WantedOf(house->AsBoard(), discovery, {});
  const auto deeds = announcer->Act(wanted, *due);
  ASSERT_EQ(deeds.size(), 9U);
  EXPECT_EQ(deeds[0].topic, "homeassistant/device/qelm_3f9a21c0/config");
  EXPECT_EQ(deeds[1].topic, "homeassistant/device/qelm_3f9a21c0_0/config");
}

TEST_F(AnnouncerTest, AfterItsRestartHomeAssistantIsToldAgainAndThenTheStates) {
  Pass(10s);
  RestartHomeAssistant();
  EXPECT_FALSE(home.IsAvailable("qelm_3f9a21c0_5_0"));
  const int before = published;
  Pass(5s);
  EXPECT_EQ(published, before + 9);
  EXPECT_TRUE(home.IsAvailable("qelm_3f9a21c0_5_0"));
  ExpectTheBus();
}

TEST_F(AnnouncerTest, ANameIsChangedLiveAndOnce) {
  Pass(10s);
  const int before = published;
  Settle([](model::Settings& settings) { settings.cards[5].name = "Hall"; });
  Settle([](model::Settings& settings) { settings.channels[{5, 0}].name = "Light"; });
  Pass(10s);
  EXPECT_EQ(published, before + 1);
  EXPECT_EQ(home.All().at("switch qelm_3f9a21c0_5_0").name, "Light");
  ExpectTheBus();
}

TEST_F(AnnouncerTest, ChangesThatFollowEachOtherAllArrive) {
  Pass(10s);
  for (int change = 0; change < 20; ++change) {
    Settle([change](model::Settings& settings) {
      settings.channels[{5, 0}].name = "Lamp " + std::to_string(change);
    });
    Pass(700ms);
  }
  Pass(10s);
  EXPECT_EQ(home.All().at("switch qelm_3f9a21c0_5_0").name, "Lamp 19");
}

TEST_F(AnnouncerTest, ATopicRestsAfterAMessage) {
  Pass(10s);
  Settle([](model::Settings& settings) { settings.cards[5].name = "Hall"; });
  Pass(2050ms);
  const int before = published;
  Settle([](model::Settings& settings) { settings.cards[5].name = "Yard"; });
  Pass(2900ms);
  EXPECT_EQ(published, before);
  Pass(2200ms);
  EXPECT_EQ(published, before + 1);
  ExpectTheBus();
}

TEST_F(AnnouncerTest, TheBusIsRenamed) {
  Pass(10s);
  house->topics = Topics("hall");
  Settle([](model::Settings& settings) { settings.bus_name = "Hall"; });
  Pass(10s);
  EXPECT_EQ(home.All().at("switch qelm_3f9a21c0_5_0").state_topic, "qelm/hall/5/0");
  ExpectTheBus();
}

TEST_F(AnnouncerTest, AnEntityThatGoesIsRemovedByNameAndThenLeftOut) {
  Pass(10s);
  Settle([](model::Settings& settings) { settings.channels[{5, 0}].shown_as = "light"; });
  Pass(3s);
  EXPECT_NE(At(kRelays).find(R"("out0":{"p":"switch"})"), std::string::npos);
  ExpectTheBus();
  Pass(10s);
  EXPECT_EQ(At(kRelays).find("out0"), std::string::npos);
  EXPECT_TRUE(Has("light qelm_3f9a21c0_5_0"));
  EXPECT_FALSE(Has("switch qelm_3f9a21c0_5_0"));
}

TEST_F(AnnouncerTest, ACardOfAnotherKindTakesThePlace) {
  Pass(10s);
  Plug(5, "6 channel RC SERVO CONTROLLER");
  Pass(20s);
  EXPECT_TRUE(Has("number qelm_3f9a21c0_5_0"));
  ExpectTheBus();
  EXPECT_EQ(At(kRelays).find("switch"), std::string::npos);
}

TEST_F(AnnouncerTest, ACardThatIsSilentStays) {
  Pass(10s);
  const int before = published;
  Plug(5, "CARD?");
  Pass(1h);
  EXPECT_EQ(published, before);
}

TEST_F(AnnouncerTest, ACardThatFlapsIsNotTakenBack) {
  Pass(10s);
  const int before = published;
  for (int time = 0; time < 100; ++time) {
    Pull(5);
    Pass(40s);
    Plug(5, "16 channel DIGITAL OUTPUT");
    Pass(10s);
  }
  EXPECT_EQ(published, before);
}

TEST_F(AnnouncerTest, ACardThatIsGoneForGoodIsTakenBack) {
  Pass(10s);
  Pull(5);
  Pass(59s);
  EXPECT_NE(At(kRelays), "");
  Pass(5s);
  EXPECT_EQ(At(kRelays), "");
  ExpectTheBus();
  Plug(5, "16 channel DIGITAL OUTPUT");
  Pass(10s);
  ExpectTheBus();
  EXPECT_TRUE(Has("switch qelm_3f9a21c0_5_0"));
}

TEST_F(AnnouncerTest, NoCardIsGoneWhileTheCableIsPulled) {
  Pass(10s);
  house->bus.SetAdapter({model::AdapterState::kDown, {}, {}});
  Pull(5);
  Pass(1h);
  EXPECT_NE(At(kRelays), "");
  house->bus.SetAdapter({model::AdapterState::kUp, {}, {}});
  Changed();
  Pass(65s);
  EXPECT_EQ(At(kRelays), "");
}

TEST_F(AnnouncerTest, AHubThatStartsTakesNothingBackUntilItKnows) {
  Pass(10s);
  const std::string before = At(kRelays);
  RestartHub(house->cards);
  Pass(1h);
  EXPECT_EQ(At(kRelays), before);
  StartDaemon();
  Pass(2min);
  EXPECT_EQ(At(kRelays), before);
  ExpectTheBus();
}

TEST_F(AnnouncerTest, WhatWentWhileTheHubWasDownIsTakenBack) {
  Settle([](model::Settings& settings) { settings.channels[{3, 0}].name = "Door"; });
  Pass(10s);
  protocol::CardNames cards = house->cards;
  cards[5] = "EMPTY";
  cards[3] = "16 channel DIGITAL OUTPUT";
  RestartHub(cards);
  StartDaemon();
  Pass(2min);
  EXPECT_EQ(At(kRelays), "");
  EXPECT_FALSE(Has("binary_sensor qelm_3f9a21c0_3_0"));
  EXPECT_TRUE(Has("switch qelm_3f9a21c0_3_0"));
  ExpectTheBus();
}

TEST_F(AnnouncerTest, WhatAUserDeletesComesBack) {
  Pass(10s);
  DeleteEntity(kRelays);
  EXPECT_FALSE(Has("switch qelm_3f9a21c0_5_0"));
  Pass(10s);
  ExpectTheBus();
  EXPECT_TRUE(Has("switch qelm_3f9a21c0_5_0"));
}

TEST_F(AnnouncerTest, TwoHubsOfOneIdDoNotQuarrel) {
  Pass(2min);  // by then it is known that no other cards come
  const int before = published;
  announcer->Hear(kRelays, R"({"components":{"x":{"platform":"switch","unique_id":"y"}}})", now);
  Pass(1h);
  EXPECT_EQ(published, before);
}

TEST_F(AnnouncerTest, TheFormIsChangedLive) {
  Pass(10s);
  Use(Discovery::kComponents);
  Pass(20s);
  EXPECT_EQ(At(kRelays), "");
  EXPECT_NE(At("homeassistant/switch/qelm_3f9a21c0/5_out0/config"), "");
  ExpectTheBus();
  Settle([](model::Settings& settings) { settings.channels[{5, 0}].shown_as = "light"; });
  Pull(3);
  Pass(2min);
  ExpectTheBus();
  Use(Discovery::kOff);
  Pass(20s);
  ExpectTheBus();
  EXPECT_EQ(Keys(home), "");
  Use(Discovery::kDevice);
  Pass(20s);
  ExpectTheBus();
}

TEST_F(AnnouncerTest, OthersTopicsAreBounded) {
  Pass(10s);
  for (int i = 0; i < 10'000; ++i)
    announcer->Hear("homeassistant/switch/qelm_3f9a21c0/x" + std::to_string(i) + "/config", "{}",
                    now);
  const auto deeds =
      announcer->Act(WantedOf(house->AsBoard(), discovery, departures.Gone()), now + 1min);
  EXPECT_EQ(deeds.size(), Announcer::kMostTopics - 9);
}

// ---- anything in any order ---------------------------------------------------------------------

class RandomTest : public AnnouncerTest, public testing::WithParamInterface<unsigned> {
 protected:
  size_t Any(size_t count) { return std::uniform_int_distribution<size_t>(0, count - 1)(random); }

  void DoAnything() {
    static constexpr const char* kKinds[] = {"EMPTY",
                                             "CARD?",
                                             "16 channel DIGITAL OUTPUT",
                                             "UNIDENTIFIED",
                                             "16 channel DIGITAL INPUT",
                                             "6 channel RC SERVO CONTROLLER",
                                             "IR REMOTE CONTROLLER",
                                             "KEYMX and ROTE CONTROLLER",
                                             "ALPHANUMERIC LCD CONTROLLER"};
    static constexpr const char* kForms[] = {"", "switch", "light", "fan"};
    const auto address = static_cast<unsigned>(Any(16));
    switch (Any(9)) {
      case 0:
      case 1:
        return Plug(address, kKinds[Any(std::size(kKinds))]);
      case 2:
        return Settle([&](model::Settings& settings) {
          settings.cards[address].name = "card " + std::to_string(Any(5));
        });
      case 3:
        return Settle([&](model::Settings& settings) {
          settings.channels[{address, static_cast<unsigned>(Any(4))}].shown_as =
              kForms[Any(std::size(kForms))];
        });
      case 4:
        return Settle([&](model::Settings& settings) {
          settings.codes.clear();
          settings.codes[Any(2) == 0 ? "434F" : "FF"] = "code";
        });
      case 5:
        return RestartHomeAssistant();
      case 6:
        RestartHub(house->cards);
        return StartDaemon();
      case 7:
        if (!retained.empty()) {
          const auto any = std::next(retained.begin(), static_cast<long>(Any(retained.size())));
          if (any->first.starts_with("homeassistant")) DeleteEntity(std::string(any->first));
        }
        return;
      default:
        if (Any(4) == 0) Use(static_cast<Discovery>(Any(3)));
    }
  }
};

TEST_P(RandomTest, InTheEndThereAreTheEntitiesOfTheBus) {
  random.seed(GetParam());
  for (int action = 0; action < 60; ++action) {
    DoAnything();
    Pass(std::chrono::milliseconds(Any(2) == 0 ? Any(2000) : Any(90'000)));
  }
  // Of a card that is silent from the start nobody knows what it is.
  for (unsigned address = 0; address < 16; ++address)
    if (house->cards[address] == "CARD?") Pull(address);
  Pass(5min);
  ExpectTheBus();
}

INSTANTIATE_TEST_SUITE_P(Seeds, RandomTest, testing::Range(1U, 21U));

}  // namespace
}  // namespace hub::mqtt
