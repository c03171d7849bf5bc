// The bus as a whole, and the daemon's console.
#include "api/ApiTest.h"

namespace hub::api {
namespace {

class BusMethodsTest : public ApiTest {
 protected:
  // Runs the call with one thing in its way after the other: the daemon is not there, another
  // program holds it, it is mute.
  void ExpectNeedsDaemon(std::string_view method, std::string_view parameters) {
    TakeAsked();
    DaemonIs(model::DaemonState::kAbsent);
    ExpectProblem(method, parameters, 503, "", "the daemon is not there; nothing was sent");
    DaemonIs(model::DaemonState::kWaiting);
    ExpectProblem(method, parameters, 503, "",
                  "another program holds the daemon's port io; nothing was sent");
    EXPECT_EQ(TakeAsked(), "");
    DaemonIs(model::DaemonState::kUp);
    link.is_mute = true;
    EXPECT_EQ(Call(method, parameters).problem->status, 503);
    EXPECT_EQ(Call(method, parameters).problem->retry_after, 5);
  }
};

TEST_F(BusMethodsTest, TheBusIsRead) {
  bus.SetPace(50);
  EXPECT_EQ(Result("bus.get"), Compact(R"({"id":"3f9a21c0", "name":null, "seq":10,
      "daemon":{"state":"up", "version":"1.20", "since":"2026-11-21T12:00:00.000Z",
                "waiting_for":null},
      "adapter":{"state":"unknown", "device":null, "version":null}, "broker":null,
      "pace":50, "polling":null, "virtual":false, "hub":{"version":"2.5"}})"));
}

TEST_F(BusMethodsTest, ADiscoveryAsksTheBus) {
  link.then = [this](const std::string&) { Pull(0x5); };
  EXPECT_EQ(Result("bus.discover").find(R"("address":"5")"), std::string::npos);
  EXPECT_EQ(TakeAsked(), "FORCEDISCOVER");
  EXPECT_EQ(LastNote(), "command operator: discover");
  ExpectNeedsDaemon("bus.discover", "{}");
}

TEST_F(BusMethodsTest, ThePaceIsSet) {
  link.answers["SPEED=7"] = {"CIA: SPEED IS SET to 7%"};
  link.then = [this](const std::string&) { bus.SetPace(7); };
  EXPECT_NE(Result("bus.pace", R"({"pace":7})").find(R"("pace":7)"), std::string::npos);
  EXPECT_EQ(TakeAsked(), "SPEED=7");
  EXPECT_EQ(LastNote(), "command operator: pace: 7 %");
  ExpectNeedsDaemon("bus.pace", R"({"pace":7})");
}

TEST_F(BusMethodsTest, PollingIsSwitched) {
  Result("bus.polling", R"({"polling":true})");
  Result("bus.polling", R"({"polling":false})");
  EXPECT_EQ(TakeAsked(), "ENABLEPOLL\nPOLLSTATE\nDISABLEPOLL\nPOLLSTATE");
  EXPECT_EQ(LastNote(), "command operator: polling: off");
  ExpectNeedsDaemon("bus.polling", R"({"polling":true})");
}

TEST_F(BusMethodsTest, TheAnswerKnowsWhatIsPolledNow) {
  link.answers["POLLSTATE"] = {"CIA: GLOBAL POLLING IS DISABLED", "PTI:0x3:ON", "PTI:0xF:OFF"};
  EXPECT_NE(Result("bus.polling", R"({"polling":false})").find(R"("polling":false)"),
            std::string::npos);
  EXPECT_NE(Result("card.polling", R"({"address":"F","polling":false})").find(R"("polling":false)"),
            std::string::npos);
}

TEST_F(BusMethodsTest, TheConsoleAnswersInLines) {
  link.answers["DRVVER"] = {"CIA: DRIVER VERSION 1.20"};
  ExpectResult("console.run", R"({"line":"DRVVER"})", R"({"lines":["CIA: DRIVER VERSION 1.20"]})");
  EXPECT_EQ(LastNote(), "command operator: console: DRVVER");
  ExpectNeedsDaemon("console.run", R"({"line":"DRVVER"})");
}

TEST_F(BusMethodsTest, AFullConsoleIsTriedAgainSoon) {
  link.is_full = true;
  for (const char* method : {"console.run", "bus.discover"}) {
    const std::string_view parameters = method[0] == 'c' ? R"({"line":"DRVVER"})" : "{}";
    ExpectProblem(method, parameters, 429, "", "the daemon's console has 64 lines waiting");
    EXPECT_EQ(Call(method, parameters).problem->retry_after, 1);
  }
  EXPECT_EQ(TakeAsked(), "");
}

TEST_F(BusMethodsTest, AnErrorOfTheConsoleIsAnAnswer) {
  link.answers["XYZ"] = {"CIE: UNKNOWN COMMAND "};
  EXPECT_EQ(Result("console.run", R"({"line":"XYZ"})"), R"({"lines":["CIE: UNKNOWN COMMAND "]})");
}

TEST_F(BusMethodsTest, TheHubsOwnSessionIsNotEnded) {
  ExpectProblem("console.run", R"({"line":"EXIT"})", 422, "line",
                "a line for the daemon is one line of at most 253 characters, and not EXIT");
  ExpectProblem("console.run", R"({"line":""})", 422, "line",
                "a text of 0 characters; line takes 1 to 253");
  ExpectProblem("console.run", R"({"line":"H\u00e9LP"})", 422, "line",
                "the console takes printable ASCII only");
  EXPECT_EQ(Call("console.run", R"({"line":")" + std::string(254, 'x') + "\"}").problem->where,
            "line");
  EXPECT_EQ(TakeAsked(), "");
}

TEST_F(BusMethodsTest, ASubscriptionBeginsWithTheWholeState) {
  const Outcome outcome = Call("live.subscribe");
  EXPECT_EQ(outcome.live_after, bus.Sequence());
  EXPECT_EQ(outcome.text.substr(0, 32), R"({"seq":9,"bus":{"id":"3f9a21c0",)");
  EXPECT_TRUE(outcome.text.ends_with(
      R"(],"page":{"order":[],"hidden":[],"groups":[]},"events":[],"lost":0})"));
}

TEST_F(BusMethodsTest, ASubscriptionBringsTheEventsThatWereMissed) {
  Report(0x8, 0, 0x00);
  const std::string after = std::to_string(bus.Sequence());
  Report(0x8, 0, 0x05);
  EXPECT_NE(Result("live.subscribe", "{\"after\":" + after + "}")
                .find(R"("event_type":"press","code":5}],"lost":0})"),
            std::string::npos);
  ExpectProblem("live.subscribe", R"({"after":-1})", 422, "after",
                "-1; after takes 0 to 1000000000000000");
  ExpectProblem("live.subscribe", R"({"after":"1"})", 422, "after", "after takes a whole number");
}

}  // namespace
}  // namespace hub::api
