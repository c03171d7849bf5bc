// What Home Assistant finds on a real broker, as mosquitto_sub has it.
#include <sstream>
#include <string>
#include <vector>

#include "Accepted.h"
#include "BrokerSite.h"

class HomeAssistantTest : public BrokerSite {
 protected:
  static constexpr char kDevices[] = "homeassistant/device/+/config";

  void Ready() {
    StartBroker();
    StartAllWith();
    ExpectKept(kDevices, 9);
  }

  struct Kept {
    std::string topic;
    std::string payload;
  };
  // What the broker has there.
  std::vector<Kept> KeptAt(const std::string& filter) {
    Listen(filter);
    std::vector<Kept> kept;
    std::istringstream lines(Heard());
    for (std::string line; std::getline(lines, line);) {
      if (!line.starts_with("1 ")) continue;
      const size_t end = line.find(' ', 2);
      kept.push_back({line.substr(2, end - 2), line.substr(end + 1)});
    }
    return kept;
  }
  void ExpectKept(const std::string& filter, size_t count) {
    EXPECT_TRUE(WaitUntil([&] { return KeptAt(filter).size() == count; })) << Heard();
  }
  // Everything there is taken.
  void ExpectTaken(const std::string& filter) {
    for (const Kept& kept : KeptAt(filter))
      EXPECT_EQ(hub::mqtt::FaultsOfMessage(kept.topic, kept.payload), hub::mqtt::Faults{})
          << kept.topic;
  }
};

TEST_F(HomeAssistantTest, EveryCardIsADeviceThatItTakes) {
  Ready();
  ExpectTaken(kDevices);
  Listen("homeassistant/#");
  Tell("homeassistant/status", "online");
  EXPECT_TRUE(WaitUntil([this] { return TimesHeard("\n0 homeassistant/device/") == 9; }));
}

TEST_F(HomeAssistantTest, WhatIsDeletedThereComesBack) {
  Ready();
  for (const Kept& kept : KeptAt(kDevices)) Tell(kept.topic, "", {"-r"});
  ExpectKept(kDevices, 9);
}

TEST_F(HomeAssistantTest, ANameIsToldAtOnceAndAnotherFormAfterTheFirstIsTakenBack) {
  Ready();
  Listen(kDevices);
  EXPECT_EQ(StatusOf(Ask("PATCH", "/api/names", R"({"channels":{"5.0":"Ceiling"}})")), 200);
  EXPECT_TRUE(WaitUntil([this] { return HasHeard("\"Ceiling\""); }));
  WriteSettings(BrokerSection("discovery = \"components\"\n"));
  SayHup("settings read again");
  ExpectKept("homeassistant/switch/+/+/config", 17);
  ExpectKept(kDevices, 0);
  ExpectTaken("homeassistant/+/+/+/config");
}

TEST_F(HomeAssistantTest, WhatAnEarlierRunHasLeftIsTakenBack) {
  Ready();
  hub.reset();
  WriteSettings(BrokerSection("discovery = \"off\"\n"));
  StartHub();
  ExpectKept(kDevices, 0);
}
