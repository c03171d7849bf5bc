// What a connection may use up. Each attack ends by itself, and harms nobody else.
#include <functional>
#include <vector>

#include "Stand.h"

namespace hub::http {
namespace {

using std::chrono::milliseconds;
using std::chrono::seconds;

class LimitsTest : public testing::Test {
 protected:
  // Time passes up to the limit and two seconds more: by then, and not before its limit, the server
  // closes the connection. `each` is done while it passes.
  template <class Each>
  void ExpectEndsAfter(seconds limit, Each each, const std::function<bool()>& is_ended) {
    ExpectOthersAreServed();  // so the server has seen what was sent before
    const milliseconds before = stand.clock.Passed();
    EXPECT_TRUE(WaitUntil([&] {
      if (is_ended()) return true;
      if (stand.clock.Passed() - before >= limit + seconds(2)) return false;
      each();
      stand.clock.Pass(milliseconds(250));
      return false;
    }));
    EXPECT_GE(stand.clock.Passed() - before, limit);
  }

  template <class Each>
  void ExpectEndsAfter(seconds limit, WebClient& client, Each each) {
    ExpectEndsAfter(limit, each, [&] { return client.IsEnded(); });
  }

  void ExpectEndsAfter(seconds limit, WebClient& client) {
    ExpectEndsAfter(limit, client, [] {});
  }

  void ExpectOthersAreServed() { EXPECT_EQ(stand.Connect().Get("/healthz").status, 200); }

  Stand stand;
};

TEST_F(LimitsTest, SlowlorisIsClosedAfterTenSeconds) {
  WebClient client = stand.Connect();
  client.Send("GET / HTTP/1.1\r\nHost: localhost\r\nX: ");
  const auto drip = [&] {
    client.TrySend("y");
    ExpectOthersAreServed();
  };
  ExpectEndsAfter(seconds(10), client, drip);
}

TEST_F(LimitsTest, WhoSaysNothingIsClosedAfterTenSeconds) {
  WebClient client = stand.Connect();
  ExpectEndsAfter(seconds(10), client);
}

TEST_F(LimitsTest, AnIdleConnectionIsKeptForAMinute) {
  WebClient client = stand.Connect();
  client.Get("/healthz");
  ExpectEndsAfter(seconds(60), client);
}

TEST_F(LimitsTest, ABodyThatDripsIsClosedAfterThirtySeconds) {
  WebClient client = stand.Connect();
  client.Send(RequestText("PUT", "/api/things/lamp",
                          "Content-Type: application/json\r\nContent-Length: 60000\r\n"));
  ExpectEndsAfter(seconds(30), client, [&] { client.TrySend("x"); });
}

TEST_F(LimitsTest, AnEndlessHeaderIsRefused) {
  WebClient client = stand.Connect();
  client.Send("GET / HTTP/1.1\r\nHost: localhost\r\n");
  const std::string field = "X-Again: " + std::string(100, 'y') + "\r\n";
  for (int i = 0; i < 90; ++i) client.TrySend(field);
  const Reply reply = client.Read();
  EXPECT_EQ(reply.status, 431);
  EXPECT_EQ(reply.fields.at("connection"), "close");
  EXPECT_TRUE(client.Ends());
  ExpectOthersAreServed();
}

TEST_F(LimitsTest, AnEndlessLineIsRefused) {
  WebClient client = stand.Connect();
  client.TrySend("GET /" + std::string(100'000, 'x'));
  EXPECT_EQ(client.Read().status, 431);
  EXPECT_TRUE(client.Ends());
}

TEST_F(LimitsTest, AHeaderOfEightKilobytesIsTaken) {
  WebClient client = stand.Connect();
  EXPECT_EQ(client.Get("/healthz", "X: " + std::string(8000, 'y') + "\r\n").status, 200);
}

TEST_F(LimitsTest, ALongBodyIsRefusedBeforeItIsSent) {
  WebClient client = stand.Connect();
  client.Send(RequestText("PUT", "/api/things/lamp",
                          "Content-Type: application/json\r\nContent-Length: 65537\r\n"));
  EXPECT_EQ(client.Read().status, 413);
  EXPECT_TRUE(client.Ends());
}

TEST_F(LimitsTest, EndlessChunksAreRefused) {
  WebClient client = stand.Connect();
  client.Send(RequestText("PUT", "/api/things/lamp",
                          "Content-Type: application/json\r\nTransfer-Encoding: chunked\r\n"));
  const std::string chunk = "1000\r\n" + std::string(0x1000, ' ') + "\r\n";
  for (int i = 0; i < 20; ++i) client.TrySend(chunk);
  EXPECT_EQ(client.Read().status, 413);
  EXPECT_TRUE(client.Ends());
}

TEST_F(LimitsTest, ABodyOfSixtyFourKilobytesIsTaken) {
  WebClient client = stand.Connect();
  const std::string json = R"({"value":7)" + std::string(65536 - 11, ' ') + "}";
  EXPECT_EQ(client.Write("PUT", "/api/things/lamp", json).status, 200);
}

TEST_F(LimitsTest, AReaderThatNeverReadsIsClosedAfterThirtySeconds) {
  WebClient client = stand.Connect();
  client.KeepInputSmall();
  client.Send(RequestText("GET", "/api/long?size=30000000"));
  EXPECT_TRUE(WaitUntil(
      [&] { return stand.Run([&] { return stand.server->Count().requests[200]; }) == 1; }));
  // Nothing is read here: the other end of the time is that the descriptor of the server goes.
  ExpectEndsAfter(
      seconds(30), [&] { ExpectOthersAreServed(); },
      [&] {
        return stand.Connect().Get("/metrics").body.find("\nqelm_clients{door=\"http\"} 1\n") !=
               std::string::npos;
      });
}

TEST_F(LimitsTest, ThreeHundredSocketsLeaveRoomForTheNext) {
  std::vector<WebClient> crowd;
  for (int i = 0; i < 256; ++i) crowd.push_back(stand.Connect());
  EXPECT_EQ(crowd.back().Get("/healthz").status, 200);
  std::vector<WebClient> refused;
  for (int i = 0; i < 20; ++i) refused.push_back(stand.Connect());
  for (WebClient& client : refused) {
    const Reply reply = client.Read();
    EXPECT_EQ(reply.status, 503);
    EXPECT_EQ(reply.fields.at("retry-after"), "5");
    EXPECT_TRUE(client.Ends());
  }
  for (int i = 0; i < 24; ++i) crowd.push_back(stand.Connect());
  const auto turned_away = [&] { return stand.server->Count().turned_away; };
  EXPECT_TRUE(WaitUntil([&] { return stand.Run(turned_away) == 44; }));
  refused.clear();
  crowd.erase(crowd.begin() + 100, crowd.end());
  EXPECT_TRUE(WaitUntil([&] {
    try {
      return stand.Connect().Get("/healthz").status == 200;
    } catch (const std::exception&) {
      return false;  // not seen yet that others have left
    }
  }));
}

TEST_F(LimitsTest, FarOverTheLimitConnectionsAreClosedWithoutAWord) {
  std::vector<WebClient> crowd;
  for (int i = 0; i < 350; ++i) crowd.push_back(stand.Connect());
  EXPECT_EQ(crowd.back().ReadToEnd(), "");
}

TEST_F(LimitsTest, ACrowdOnTheNetworkLeavesTheUnixSocketOpen) {
  std::vector<WebClient> crowd;
  for (int i = 0; i < 350; ++i) crowd.push_back(stand.Connect());
  EXPECT_EQ(crowd[200].Get("/healthz").status, 200);
  EXPECT_EQ(stand.ConnectLocally().Get("/healthz").status, 200);
}

TEST_F(LimitsTest, ACrowdAtTheUnixSocketLeavesTheNetworkOpen) {
  std::vector<WebClient> crowd;
  for (int i = 0; i < 64; ++i) crowd.push_back(stand.ConnectLocally());
  EXPECT_EQ(crowd.back().Get("/healthz").status, 200);
  EXPECT_EQ(stand.ConnectLocally().Read().status, 503);
  ExpectOthersAreServed();
}

TEST_F(LimitsTest, StopEndsEveryConversation) {
  WebClient idle = stand.Connect();
  WebClient live = stand.Subscribe();
  WebClient half = stand.Connect();
  half.Send("GET / HT");
  WebClient slow = stand.Connect();
  slow.KeepInputSmall();
  slow.Send(RequestText("GET", "/api/long?size=30000000"));
  idle.Get("/healthz");
  stand.Stop();  // hangs where one is left
  EXPECT_TRUE(idle.Ends());
  EXPECT_TRUE(live.Ends());
  EXPECT_TRUE(half.Ends());
}

}  // namespace
}  // namespace hub::http
