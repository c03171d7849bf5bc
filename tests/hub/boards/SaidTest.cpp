// What other boards' topics and payloads say, and all that says nothing.
#include "boards/Said.h"

#include <gtest/gtest.h>

namespace hub::boards {
namespace {

Place At(std::string_view topic) { return std::get<Place>(ReadTopic(topic)); }
std::string Why(std::string_view topic) { return std::get<std::string>(ReadTopic(topic)); }

TEST(ReadTopic, KnowsEachTopicOfABoard) {
  struct Row {
    std::string_view topic;
    What what;
    unsigned address;
    unsigned number;
    size_t most;
  };
  for (const Row& row : {
           Row{"qelm/shed/status", What::kStatus, 0, 0, 1024},
           Row{"qelm/shed/bus", What::kBus, 0, 0, 65536},
           Row{"qelm/shed/rates", What::kRates, 0, 0, 1024},
           Row{"qelm/shed/error", What::kError, 0, 0, 4096},
           Row{"qelm/shed/5/status", What::kCardStatus, 5, 0, 1024},
           Row{"qelm/shed/E/glass", What::kGlass, 14, 0, 2048},
           Row{"qelm/shed/8/event", What::kEvent, 8, 0, 1024},
           Row{"qelm/shed/F/15", What::kValue, 15, 15, 1024},
       }) {
    const Place place = At(row.topic);
    EXPECT_EQ(place.board, "shed") << row.topic;
    EXPECT_EQ(place.what, row.what) << row.topic;
    EXPECT_EQ(place.address, row.address) << row.topic;
    EXPECT_EQ(place.number, row.number) << row.topic;
    EXPECT_EQ(place.most, row.most) << row.topic;
  }
}

TEST(ReadTopic, SaysWhyItIsNone) {
  EXPECT_EQ(Why("qelm"), "a name that no board has");
  EXPECT_EQ(Why("qelm//status"), "a name that no board has");
  EXPECT_EQ(Why("qelm/my shed/status"), "a name that no board has");
  EXPECT_EQ(Why("qelm/" + std::string(33, 'x') + "/status"), "a name that no board has");
  EXPECT_EQ(Why("other/shed/status"), "a name that no board has");
  EXPECT_EQ(Why("qelm/shed/nonsense"), "a topic that is not known");
  EXPECT_EQ(Why("qelm/shed/G/0"), "a topic of no card");
  EXPECT_EQ(Why("qelm/shed/5/16"), "a topic that is not known");
  EXPECT_EQ(Why("qelm/shed/5/00"), "a topic that is not known");
  EXPECT_EQ(Why("qelm/shed/5/-1"), "a topic that is not known");
  EXPECT_EQ(Why("qelm/shed/5/0/set"), "a topic that is not known");
  EXPECT_EQ(Why("qelm/shed/5/99999999999999999999"), "a topic that is not known");
}

TEST(ReadValue, IsALineANumberOrNothing) {
  EXPECT_EQ(ReadValue("ON"), model::Value(true));
  EXPECT_EQ(ReadValue("OFF"), model::Value(false));
  EXPECT_EQ(ReadValue("2.5"), model::Value(2.5));
  EXPECT_EQ(ReadValue("-100"), model::Value(-100.0));
  EXPECT_EQ(ReadValue("None"), model::Value());
  for (const char* odd : {"", "on", "ON ", "1e999", "nan", "inf", "0x10", "true", "\"ON\"", "12 V"})
    EXPECT_EQ(ReadValue(odd), std::nullopt) << odd;
}

TEST(ReadGlass, HasRowsOfOneLength) {
  const auto glass = ReadGlass(R"({"rows":["Hello ","  \\\"  "],"light":true,"cursor":null})");
  ASSERT_TRUE(glass);
  EXPECT_EQ(glass->rows, (std::vector<std::string>{"Hello ", "  \\\"  "}));
  EXPECT_EQ(glass->light, true);
  EXPECT_EQ(glass->cursor, std::nullopt);
  EXPECT_EQ(glass->blink, std::nullopt);
}

TEST(ReadGlass, TakesNoOtherForm) {
  for (const char* odd :
       {"", "[]", "{}", R"({"rows":[]})", R"({"rows":["a","bc"]})", R"({"rows":[1]})",
        R"({"rows":[""]})", R"({"rows":["a\u0007"]})", R"({"rows":["a"],"light":1})",
        R"({"rows":["1","2","3","4","5","6","7","8","9"]})"})
    EXPECT_FALSE(ReadGlass(odd)) << odd;
  EXPECT_FALSE(ReadGlass(R"({"rows":[")" + std::string(81, 'x') + R"("]})"));
}

constexpr char kShed[] =
    R"({"id":"8c01d2ee","name":"Shed","version":"0.3.0",)"
    R"("daemon":{"state":"up","version":"1.20","since":null,"waiting_for":null},)"
    R"("adapter":{"state":"up","device":"/dev/ttyUSB0","version":"v1.2"},"pace":50,)"
    R"("polling":true,"virtual":true,"news":[1,2],"cards":[)"
    R"({"address":"5","kind":"digital-output","name":"Relays","state":"present",)"
    R"("channels":{"0":{"name":"Lamp","unit":null,"min":null,"max":null}}},)"
    R"({"address":"F","kind":"analogue-input","name":null,"state":"silent",)"
    R"("channels":{"3":{"name":null,"unit":"V","min":0,"max":5.5}}},)"
    R"({"address":"0","kind":"teleporter","name":null,"state":"present"}]})";

TEST(ReadBus, SaysWhoItIsAndWhatItHas) {
  const auto said = ReadBus(kShed);
  ASSERT_TRUE(said);
  EXPECT_EQ(said->identity.id, "8c01d2ee");
  EXPECT_EQ(said->identity.name, "Shed");
  EXPECT_EQ(said->identity.daemon_state, "up");
  EXPECT_EQ(said->identity.adapter_device, "/dev/ttyUSB0");
  EXPECT_TRUE(said->identity.is_virtual);
  EXPECT_EQ(said->cards[5].kind->kind, model::Kind::kDigitalOutput);
  EXPECT_EQ(said->cards[5].name, "Relays");
  EXPECT_TRUE(said->cards[5].is_present);
  EXPECT_EQ(said->cards[5].settled[0].name, "Lamp");
  EXPECT_FALSE(said->cards[5].settled[0].range);
  EXPECT_FALSE(said->cards[15].is_present);
  EXPECT_EQ(said->cards[15].settled[3].unit, "V");
  EXPECT_EQ(said->cards[15].settled[3].range->max, 5.5);
  EXPECT_EQ(said->cards[0].kind->kind, model::Kind::kUnknown);
  EXPECT_EQ(said->cards[1].kind, nullptr);
}

// A board of another make may say less.
TEST(ReadBus, NeedsNoMoreThanAnIdAndCards) {
  const auto said = ReadBus(R"({"id":"8c01d2ee","cards":[)"
                            R"({"address":"5","kind":"digital-output","channels":[]},)"
                            R"({"address":"3","kind":"digital-input","state":"absent"}]})");
  ASSERT_TRUE(said);
  EXPECT_EQ(said->identity.daemon_state, "absent");
  EXPECT_EQ(said->identity.adapter_state, "unknown");
  EXPECT_EQ(said->cards[5].kind->kind, model::Kind::kDigitalOutput);
  EXPECT_TRUE(said->cards[5].is_present);
  EXPECT_EQ(said->cards[3].kind, nullptr);
}

TEST(ReadBus, BelievesNothingElse) {
  const std::string shed = kShed;
  const auto with = [&shed](std::string_view part, std::string_view other) {
    std::string text = shed;
    return text.replace(text.find(part), part.size(), other);
  };
  EXPECT_FALSE(ReadBus(""));
  EXPECT_FALSE(ReadBus("[]"));
  EXPECT_FALSE(ReadBus(shed.substr(0, shed.size() - 1)));
  EXPECT_FALSE(ReadBus(with("8c01d2ee", "8c01d2e")));
  EXPECT_FALSE(ReadBus(with("8c01d2ee", "8C01D2EE")));
  EXPECT_FALSE(ReadBus(with(R"("Shed")", "7")));
  EXPECT_FALSE(ReadBus(with("Shed", std::string(257, 'x'))));
  EXPECT_FALSE(ReadBus(with("Shed", R"(a\u001b[2J)")));
  EXPECT_FALSE(ReadBus(with("Shed", R"(a\u009b2J)")));
  EXPECT_FALSE(ReadBus(with("\"up\"", "\"flying\"")));
  EXPECT_FALSE(ReadBus(with(R"("address":"F")", R"("address":"5")")));
  EXPECT_FALSE(ReadBus(with(R"("address":"F")", R"("address":"G")")));
  EXPECT_FALSE(ReadBus(with("silent", "gone")));
  EXPECT_FALSE(
      ReadBus(with(R"("daemon":{"state":"up","version":"1.20","since":null,"waiting_for":null})",
                   R"("daemon":"up")")));
  EXPECT_FALSE(ReadBus(with("\"3\"", "\"16\"")));
  EXPECT_FALSE(ReadBus(with("5.5", "1e999")));
  EXPECT_FALSE(ReadBus(with("[1,2]", "[[[[[[[[[[1]]]]]]]]]]")));
  EXPECT_FALSE(ReadBus(with("Shed", "\xC3\x28")));
}

TEST(ReadComplaint, SaysWhatIsWrong) {
  const auto complaint = ReadComplaint(
      R"({"topic":"qelm/shed/5/0/set","title":"does not fit","status":422,"detail":"no","where":"value"})");
  ASSERT_TRUE(complaint);
  EXPECT_EQ(complaint->topic, "qelm/shed/5/0/set");
  EXPECT_EQ(complaint->status, 422);
  EXPECT_EQ(complaint->detail, "no");
  EXPECT_EQ(complaint->where, "value");
  for (const char* odd :
       {"", "{}", R"({"topic":"x","status":200})", R"({"topic":"x","status":600})",
        R"({"topic":7,"status":422})", R"({"status":"422"})"})
    EXPECT_FALSE(ReadComplaint(odd)) << odd;
}

}  // namespace
}  // namespace hub::boards
