// Each shape as a client reads it. The whole ones are compared with their schemas in OpenApiTest.
#include "api/Shapes.h"

#include "api/ApiTest.h"
#include "api/Json.h"

namespace hub::api {
namespace {

class ShapesTest : public ApiTest {
 protected:
  std::string Card(unsigned address) { return ToText(CardJson(bus, *bus.At(address))); }
  std::string Channel(unsigned address, unsigned number) {
    return ToText(ChannelJson(bus, *bus.At(address), number));
  }
  void Send(const protocol::IoCommand& command) { bus.TakeOutput(command, now); }
};

TEST_F(ShapesTest, ABusThatWaitsForAPort) {
  DaemonIs(model::DaemonState::kWaiting);
  bus.SetAdapter({model::AdapterState::kUp, "/dev/ttyUSB0", "v1.2"});
  bus.SetPolling({false, {}});
  model::Settings settings;
  settings.bus_name = "bench";
  settings.is_virtual = true;
  bus.Apply(settings);
  const std::string sequence = std::to_string(bus.Sequence());
  EXPECT_EQ(ToText(BusJson(bus)),
            Compact(R"({"id":"3f9a21c0", "name":"bench", "seq":)" + sequence + R"(,
      "daemon":{"state":"waiting", "version":null, "since":null, "waiting_for":"io"},
      "adapter":{"state":"up", "device":"/dev/ttyUSB0", "version":"v1.2"}, "broker":null,
      "pace":null, "polling":false, "virtual":true, "hub":{"version":"2.5"}})"));
}

TEST_F(ShapesTest, OneCardOfEachKind) {
  const auto head = [this](unsigned address) {
    const std::string card = Card(address);
    return card.substr(0, card.find(R"(,"channels")"));
  };
  EXPECT_EQ(
      head(0x0),
      R"({"address":"0","kind":"servo","name":null,"state":"present","keep":true,"polling":null)");
  EXPECT_EQ(
      head(0x3),
      R"({"address":"3","kind":"digital-input","name":null,"state":"present","keep":null,"polling":null)");
  EXPECT_EQ(
      head(0x4),
      R"({"address":"4","kind":"motor","name":null,"state":"present","keep":false,"polling":null)");
  EXPECT_EQ(
      head(0x5),
      R"({"address":"5","kind":"digital-output","name":null,"state":"present","keep":true,"polling":null)");
  EXPECT_EQ(
      head(0x8),
      R"({"address":"8","kind":"keys","name":null,"state":"present","keep":null,"polling":null)");
  EXPECT_EQ(
      head(0x9),
      R"({"address":"9","kind":"ir","name":null,"state":"present","keep":null,"polling":null)");
  EXPECT_EQ(
      head(0xE),
      R"({"address":"E","kind":"lcd","name":null,"state":"present","keep":null,"polling":null)");
  EXPECT_EQ(
      head(0xF),
      R"({"address":"F","kind":"analogue-input","name":null,"state":"present","keep":null,"polling":null)");
}

TEST_F(ShapesTest, ACardThatIsSilentOrOfAKindThatNobodyKnows) {
  names[0x1] = "CARD?";
  names[0x2] = "UNIDENTIFIED";
  names[0x5] = "CARD?";
  bus.SetCards(names);
  EXPECT_EQ(Card(0x1), Compact(R"({"address":"1", "kind":"silent", "name":null, "state":"silent",
    "keep":null, "polling":null, "channels":[], "glass":null, "codes":null})"));
  EXPECT_EQ(Card(0x2), Compact(R"({"address":"2", "kind":"unknown", "name":null, "state":"present",
    "keep":null, "polling":null, "channels":[], "glass":null, "codes":null})"));
  EXPECT_EQ(Card(0x5).substr(0, 68),
            R"({"address":"5","kind":"digital-output","name":null,"state":"silent",)");
}

TEST_F(ShapesTest, WhatWasSettledOfACard) {
  model::Settings settings;
  settings.cards[4].name = "Drives";
  settings.cards[4].keep = true;
  settings.cards[4].is_signed = true;
  settings.cards[0].keep = false;
  bus.Apply(settings);
  bus.SetPolling({true, {{{}, {}, {}, false}}});
  Send(protocol::WriteBlock{4, 0, 0x00});
  EXPECT_EQ(
      Card(0x4).substr(0, 93),
      R"({"address":"4","kind":"motor","name":"Drives","state":"present","keep":true,"polling":null,"c)");
  EXPECT_NE(Card(0x0).find(R"("keep":false)"), std::string::npos);
  EXPECT_NE(Card(0x3).find(R"("polling":false)"), std::string::npos);
  EXPECT_EQ(Channel(4, 0), Compact(R"({"id":"4.0", "name":null, "type":"drive", "value":-100,
    "raw":0, "known":true, "assumed":false, "pending":false, "since":"2026-11-21T12:00:00.000Z",
    "unit":null, "min":-100, "max":100, "decimals":null})"));
  EXPECT_EQ(Channel(4, 3), Compact(R"({"id":"4.3", "name":null, "type":"drive", "value":null,
    "raw":null, "known":false, "assumed":true, "pending":false, "since":null, "unit":null,
    "min":0, "max":255, "decimals":null})"));
}

TEST_F(ShapesTest, AChannelThatIsAssumedOrPending) {
  Send(protocol::WriteBlock{5, 1, 0xFB});
  bus.AssumeOutputs();
  bus.SetPending(5, 1, true);
  EXPECT_EQ(Channel(5, 10), Compact(R"({"id":"5.10", "name":null, "type":"switch", "value":true,
    "raw":0, "known":true, "assumed":true, "pending":true, "since":"2026-11-21T12:00:00.000Z",
    "unit":null, "min":null, "max":null, "decimals":null})"));
}

TEST_F(ShapesTest, ALevelInItsUnit) {
  model::Settings settings;
  settings.channels[{0xF, 3}] = {"Bath", "°C", 100, -20, 1, 0, {}};
  bus.Apply(settings);
  Report(0xF, 3, 0x20);
  EXPECT_EQ(Channel(0xF, 3), Compact(R"({"id":"F.3", "name":"Bath", "type":"level", "value":84.9,
    "raw":32, "known":true, "assumed":false, "pending":false, "since":"2026-11-21T12:00:00.000Z",
    "unit":"°C", "min":-20, "max":100, "decimals":1})"));
}

TEST_F(ShapesTest, AKeyPadsByte) {
  Report(0x8, 0, 0xC5);
  EXPECT_EQ(Channel(0x8, 0), Compact(R"({"id":"8.0", "name":null, "type":"key", "value":197,
    "raw":197, "known":true, "assumed":false, "pending":false, "since":"2026-11-21T12:00:00.000Z",
    "unit":null, "min":0, "max":255, "decimals":null})"));
}

TEST_F(ShapesTest, AGlassAfterWhatWasSent) {
  model::Glass glass(2, 4);
  glass.Control(protocol::LcdControl::kClear);
  glass.Control(protocol::LcdControl::kLightOn);
  glass.Control(protocol::LcdControl::kCursorOff);
  glass.Write(1, 1, "<b>");
  EXPECT_EQ(ToText(GlassJson(glass)),
            R"({"rows":["    "," <b>"],"known":true,"at":null,"light":true,)"
            R"("cursor":false,"blink":null})");
}

TEST_F(ShapesTest, ABrokerThatRefusesSaysWhy) {
  EXPECT_NE(ToText(BusJson(bus)).find(R"("broker":null,)"), std::string::npos);
  bus.SetBroker(model::Broker{model::BrokerState::kRefused, "192.168.1.5", "wrong password"});
  EXPECT_NE(
      ToText(BusJson(bus))
          .find(R"("broker":{"state":"refused","host":"192.168.1.5","detail":"wrong password"},)"),
      std::string::npos);
}

TEST_F(ShapesTest, EachEvent) {
  const auto text = [this](model::KeyEventType type, uint8_t code) {
    return ToText(EventJson({7, now, 8, {type, code}}));
  };
  EXPECT_EQ(
      text(model::KeyEventType::kPress, 5),
      R"({"seq":7,"time":"2026-11-21T12:00:00.000Z","card":"8","event_type":"press","code":5})");
  EXPECT_EQ(
      text(model::KeyEventType::kRelease, 63),
      R"({"seq":7,"time":"2026-11-21T12:00:00.000Z","card":"8","event_type":"release","code":63})");
  EXPECT_EQ(
      text(model::KeyEventType::kLeft, 0),
      R"({"seq":7,"time":"2026-11-21T12:00:00.000Z","card":"8","event_type":"left","code":null})");
  EXPECT_EQ(
      text(model::KeyEventType::kRight, 0),
      R"({"seq":7,"time":"2026-11-21T12:00:00.000Z","card":"8","event_type":"right","code":null})");
}

TEST_F(ShapesTest, ChangesTellWhatIsThereNow) {
  Report(0x3, 0, 0x00);
  Report(0x8, 0, 0x00);
  std::vector<model::Change> changes;
  bus.Listen([&changes](const model::Change& change) { changes.push_back(change); });
  bus.TakeInput({3, 0, 0x40}, now);
  bus.TakeInput({8, 0, 0x05}, now);
  bus.Publish();
  ASSERT_EQ(changes.size(), 1U);
  const uint64_t after = changes[0].after;
  const auto number = [after](int more) {
    return std::to_string(after + static_cast<uint64_t>(more));
  };
  EXPECT_EQ(ChangesText(bus, {}, changes[0], 2), Compact(R"({"jsonrpc":"2.0", "method":"changes",
    "params":{"after":)" + number(0) + R"(, "seq":)" + number(3) +
                                                         R"(, "bus":null, "page":null, "cards":[],
      "channels":[
        {"id":"3.6", "name":null, "type":"contact", "value":true, "raw":1, "known":true,
         "assumed":false, "pending":false, "since":"2026-11-21T12:00:00.000Z", "unit":null,
         "min":null, "max":null, "decimals":null},
        {"id":"8.0", "name":null, "type":"key", "value":5, "raw":5, "known":true,
         "assumed":false, "pending":false, "since":"2026-11-21T12:00:00.000Z", "unit":null,
         "min":0, "max":255, "decimals":null}],
      "events":[{"seq":)" + number(2) + R"(, "time":"2026-11-21T12:00:00.000Z", "card":"8",
                 "event_type":"press", "code":5}],
      "lost":2}})"));
}

TEST_F(ShapesTest, ChangesOfTheBusAndOfCardsAreWhole) {
  model::Change change;
  change.after = 1;
  change.sequence = bus.Sequence();
  change.bus = true;
  change.cards = {0xE, 0x1};
  change.channels = {{0x1, 0}, {0xE, 0}};  // gone meanwhile, and never there
  const std::string text = ToText(ChangesJson(bus, {}, change, 0));
  EXPECT_EQ(text.substr(0, 46), R"({"after":1,"seq":9,"bus":{"id":"3f9a21c0","nam)");
  EXPECT_NE(text.find(R"("cards":[{"address":"E",)"), std::string::npos);
  EXPECT_TRUE(
      text.ends_with(R"("blink":null},"codes":null}],"channels":[],"events":[],"lost":0})"));
}

TEST_F(ShapesTest, AChangeOfThePageBringsWhatItKeeps) {
  model::Change change;
  change.after = 8;
  change.sequence = 9;
  change.page = true;
  EXPECT_EQ(ToText(ChangesJson(bus, {{"order", {"E"}}}, change, 0)),
            R"({"after":8,"seq":9,"bus":null,"page":{"order":["E"]},"cards":[],"channels":[],)"
            R"("events":[],"lost":0})");
}

TEST_F(ShapesTest, ASnapshotHasNoEventsUnlessTheyAreAskedFor) {
  Report(0x8, 0, 0x00);
  Report(0x8, 0, 0x05);
  EXPECT_TRUE(ToText(SnapshotJson(bus, {}, std::nullopt))
                  .ends_with(R"(],"page":{},"events":[],"lost":0})"));
  EXPECT_TRUE(ToText(SnapshotJson(bus, {}, bus.Sequence()))
                  .ends_with(R"(],"page":{},"events":[],"lost":0})"));
}

TEST_F(ShapesTest, ASnapshotCountsEventsThatAreGone) {
  Report(0x8, 0, 0x00);
  const uint64_t after = bus.Sequence();
  for (int i = 0; i < 501; ++i) {
    Report(0x8, 0, 0x05);
    Report(0x8, 0, 0x00);
  }
  EXPECT_TRUE(ToText(SnapshotJson(bus, {}, after)).ends_with(R"(}],"lost":2})"));
}

TEST_F(ShapesTest, ANumberThatTheBusHasNotReachedIsFromBeforeItsStart) {
  Report(0x8, 0, 0x00);
  Report(0x8, 0, 0x05);
  EXPECT_TRUE(ToText(SnapshotJson(bus, {}, 1'000'000))
                  .ends_with(R"("event_type":"press","code":5}],"lost":0})"));
}

TEST(NamesOfPlacesTest, AnAddressAndAChannelAreReadStrictly) {
  EXPECT_EQ(ParseAddress("E"), 14U);
  EXPECT_EQ(AddressText(14), "E");
  EXPECT_EQ(ParseChannel("F.15"), (model::ChannelId{15, 15}));
  EXPECT_EQ(ChannelText({15, 15}), "F.15");
  EXPECT_EQ(ParseChannel("F.16"), std::nullopt);
  EXPECT_EQ(ParseChannel("F.015"), std::nullopt);
}

}  // namespace
}  // namespace hub::api
