#include <gtest/gtest.h>

#include "Ctl.h"
#include "FakeHub.h"

namespace {

constexpr char kState[] =
    R"({"jsonrpc":"2.0","id":1,"result":{"seq":10,"bus":{"daemon":{"state":"up"},)"
    R"("adapter":{"state":"up"}},"cards":[{"address":"5","kind":"digital-output","name":"Relays",)"
    R"("state":"present","channels":[{"id":"5.0","name":"Lamp","value":false,)"
    R"("since":"2026-11-21T12:00:00.000Z"}],"glass":null}]}})";
constexpr char kLampOn[] =
    R"({"jsonrpc":"2.0","method":"changes","params":{"after":10,"seq":11,"bus":null,"cards":[],)"
    R"("channels":[{"id":"5.0","name":"Lamp","value":true,"since":"2026-11-21T12:00:01.250Z"}],)"
    R"("events":[],"lost":0}})";
constexpr char kKey[] =
    R"({"jsonrpc":"2.0","method":"changes","params":{"after":11,"seq":12,"bus":null,"cards":[],)"
    R"("channels":[],"events":[{"seq":12,"time":"2026-11-21T12:00:02.000Z","card":"8",)"
    R"("event_type":"press","code":5},{"seq":13,"time":"2026-11-21T12:00:02.100Z","card":"8",)"
    R"("event_type":"left","code":null}],"lost":2}})";

class Watch : public testing::Test {
 protected:
  Watch() { hub.Feed({kState, kLampOn, kKey}); }

  Outcome Run(std::vector<std::string> arguments) {
    arguments.insert(arguments.begin(), {"--socket", hub.SocketPath()});
    arguments.emplace_back("--once");
    return RunCtl(arguments, {}, {{"TZ", "UTC"}});
  }

  FakeHub hub;
};

TEST_F(Watch, SubscribesAndPrintsWhatIsAndWhatChanges) {
  hub.Feed({kState, kLampOn});
  const Outcome outcome = Run({"watch", "5.0"});
  EXPECT_EQ(outcome.out,
            "12:00:00.000  5.0  Lamp  off\n"
            "12:00:01.250  5.0  Lamp  on\n");
  EXPECT_EQ(hub.LastBody("subscription"), R"({"jsonrpc":"2.0","id":1,"method":"live.subscribe"})");
}

TEST_F(Watch, AChannelThatIsToldAgainAsItWasIsNoLine) {
  constexpr char kCardAgain[] =
      R"({"jsonrpc":"2.0","method":"changes","params":{"after":11,"seq":12,"bus":null,"cards":[)"
      R"({"address":"5","kind":"digital-output","name":"Relays","state":"present","channels":[)"
      R"({"id":"5.0","name":"Lamp","value":true,"since":"2026-11-21T12:00:01.250Z"}],)"
      R"("glass":null}],"channels":[],"events":[],"lost":0}})";
  hub.Feed({kState, kLampOn, kCardAgain});
  EXPECT_EQ(Run({"watch", "5.0"}).out,
            "12:00:00.000  5.0  Lamp  off\n"
            "12:00:01.250  5.0  Lamp  on\n");
}

TEST_F(Watch, ByNameIsTheSame) {
  hub.Answer(
      "GET /api/cards",
      R"({"cards":[{"address":"5","name":"Relays","channels":[{"id":"5.0","name":"Lamp"}]}]})");
  hub.Feed({kState, kLampOn});
  EXPECT_EQ(Run({"watch", "lamp"}).out,
            "12:00:00.000  5.0  Lamp  off\n"
            "12:00:01.250  5.0  Lamp  on\n");
}

TEST_F(Watch, ACardHasItsEventsAndTheLostOnesAreCounted) {
  const std::string out = Run({"watch", "8"}).out;
  EXPECT_TRUE(
      out.starts_with("12:00:02.000  8  press 5\n"
                      "12:00:02.100  8  left\n"))
      << out;
  EXPECT_TRUE(out.ends_with("  events that were lost: 2\n")) << out;
}

TEST_F(Watch, EverythingHasTheBusToo) {
  const std::string out = Run({"watch"}).out;
  EXPECT_NE(out.find("daemon up, adapter up\n"), std::string::npos) << out;
  EXPECT_NE(out.find("5  digital-output  present\n"), std::string::npos) << out;
}

TEST_F(Watch, JsonIsAMessageALineAndOnlyThoseThatMatter) {
  EXPECT_EQ(Run({"watch", "5.0", "--json"}).out,
            std::string(kState) + "\n" + kLampOn + "\n" + kKey + "\n");
  EXPECT_EQ(Run({"watch", "8", "--json"}).out, std::string(kKey) + "\n");
}

TEST_F(Watch, AConnectionThatEndsIsStatusThree) {
  const Outcome outcome = Run({"watch"});
  EXPECT_EQ(outcome.status, 3);
  EXPECT_NE(outcome.err.find("the connection ended"), std::string::npos) << outcome.err;
}

constexpr char kRefused[] =
    R"({"jsonrpc":"2.0","id":1,"error":{"code":-32000,"message":"role","data":)"
    R"({"title":"role","status":403,"detail":"this wants the role view"}}})";

// The second hub ends it with a refusal.
TEST_F(Watch, AHubThatComesBackIsAskedForWhatWasMissed) {
  hub.FeedOnce({kState, kLampOn}, {kRefused});
  const Outcome outcome =
      RunCtl({"--socket", hub.SocketPath(), "watch", "5.0"}, {}, {{"TZ", "UTC"}});
  EXPECT_EQ(outcome.out,
            "12:00:00.000  5.0  Lamp  off\n"
            "12:00:01.250  5.0  Lamp  on\n");
  EXPECT_NE(outcome.err.find("the connection ended"), std::string::npos) << outcome.err;
  EXPECT_NE(outcome.err.find("; trying again\n"), std::string::npos) << outcome.err;
  EXPECT_EQ(hub.LastBody("subscription"),
            R"({"jsonrpc":"2.0","id":1,"method":"live.subscribe","params":{"after":11}})");
  EXPECT_EQ(outcome.status, 1);
}

TEST_F(Watch, OfAnotherBoardOnlyWhatItSays) {
  hub.Answer("GET /api/boards/shed/cards",
             R"({"cards":[{"address":"6","kind":"servo","state":"present","channels":[]}]})");
  hub.Feed({kState,
            R"({"jsonrpc":"2.0","method":"changes","params":{"after":10,"seq":11,"bus":null,)"
            R"("cards":[],"channels":[{"id":"5.0","value":true}],"events":[],"lost":0,"boards":[)"
            R"({"board":"attic","row":null,"cards":[],"channels":[{"id":"1.0","value":1}]},)"
            R"({"board":"shed","row":{"board":"shed","state":"stale"},"cards":[],"channels":[)"
            R"({"id":"6.0","name":"Pump","value":7,"since":"2026-11-21T12:00:02.000Z"}]}]}})"});
  const std::string out = Run({"--board", "shed", "watch"}).out;
  EXPECT_NE(out.find("  6  servo  present\n"), std::string::npos) << out;
  EXPECT_NE(out.find("  board shed is stale\n"), std::string::npos) << out;
  EXPECT_NE(out.find("12:00:02.000  6.0  Pump  7\n"), std::string::npos) << out;
  EXPECT_EQ(out.find("  5.0"), std::string::npos) << out;
  EXPECT_EQ(out.find("  1.0"), std::string::npos) << out;
}

TEST_F(Watch, NothingThatCameSteersTheTerminal) {
  hub.Feed({R"({"jsonrpc":"2.0","id":1,"result":{"seq":10,"bus":{"daemon":{"state":"\u001bA"},)"
            R"("adapter":{"state":"\u001bB"}},"cards":[{"address":"\u001bC","kind":"\u001bD",)"
            R"("state":"\u001bE"}]}})",
            R"({"jsonrpc":"2.0","method":"changes","params":{"after":10,"seq":11,"bus":null,)"
            R"("cards":[],"channels":[],"events":[{"card":"\u001bF","event_type":"\u001bG",)"
            R"("code":"\u001bH"}],"row":{"board":"\u001bI","state":"\u001bJ"}}})"});
  const std::string out = Run({"watch"}).out;
  EXPECT_EQ(out.find('\033'), std::string::npos) << out;
  for (const char* const said :
       {"daemon ?A, adapter ?B\n", "?C  ?D  ?E\n", "?F  ?G ?H\n", "board ?I is ?J\n"})
    EXPECT_NE(out.find(said), std::string::npos) << out;
}

TEST_F(Watch, ARefusedSubscriptionIsStatusOne) {
  hub.Feed({kRefused});
  const Outcome outcome = Run({"watch"});
  EXPECT_EQ(outcome.status, 1);
  EXPECT_NE(outcome.err.find("this wants the role view"), std::string::npos) << outcome.err;
}

TEST_F(Watch, ARefusedConnectionIsStatusOne) {
  hub.Answer("GET /api/live", R"({"title":"log in","status":401,"detail":"no login"})", 401);
  const Outcome outcome = Run({"watch"});
  EXPECT_EQ(outcome.status, 1);
  EXPECT_NE(outcome.err.find("give a token"), std::string::npos) << outcome.err;
}

TEST_F(Watch, CarriesTheToken) {
  RunCtl({"--url", hub.Url(), "watch", "--once"}, {}, {{"QELMCTL_TOKEN", "s3cret"}});
  EXPECT_NE(hub.Requests().front().headers.find("Authorization: Bearer s3cret\r\n"),
            std::string::npos);
}

}  // namespace
