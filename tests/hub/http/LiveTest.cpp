// What is told to those who hear the bus live.
#include <boost/asio/co_spawn.hpp>
#include <boost/asio/use_future.hpp>

#include "Stand.h"
#include "http/LiveClient.h"

namespace hub::http {
namespace {

class LiveTest : public testing::Test {
 protected:
  // The number behind a name in a message.
  static uint64_t Number(const std::string& message, const std::string& name) {
    const size_t at = message.find("\"" + name + "\":");
    if (at == std::string::npos) throw std::runtime_error("no " + name + " in " + message);
    return std::stoull(message.substr(at + name.size() + 3));
  }

  static bool Has(const std::string& message, const std::string& text) {
    return message.find(text) != std::string::npos;
  }

  // Closed with this code as the last frame; and hard, since it is not answered.
  void ExpectClosedWith(WebClient& client, const std::string& code) {
    Frame frame = client.ReadFrame();
    while (frame.opcode == 1 || frame.opcode == 9) frame = client.ReadFrame();
    EXPECT_EQ(frame.opcode, 8);
    EXPECT_EQ(frame.payload.substr(0, 2), code);
    EXPECT_TRUE(WaitUntil([&] {
      stand.clock.Pass(std::chrono::milliseconds(100));
      return client.IsEnded();
    }));
  }

  const std::string kNotAllowed{"\x03\xF0"};  // 1008
  Stand stand;
};

TEST_F(LiveTest, ASubscriptionBringsTheWholeStateThenChanges) {
  WebClient client = stand.Connect();
  client.Upgrade();
  client.SendText(R"({"jsonrpc":"2.0","id":"a","method":"live.subscribe"})");
  const std::string state = client.ReadText();
  EXPECT_TRUE(state.starts_with(R"({"jsonrpc":"2.0","id":"a","result":{"seq":)")) << state;
  EXPECT_TRUE(Has(state, R"("id":"F.3")"));
  stand.Move(7);
  const std::string change = client.ReadText();
  EXPECT_TRUE(change.starts_with(R"({"jsonrpc":"2.0","method":"changes","params":{"after":)"));
  EXPECT_EQ(Number(change, "after"), Number(state, "seq"));
  EXPECT_EQ(Number(change, "seq"), stand.Sequence());
  EXPECT_TRUE(Has(change, R"("id":"F.3")"));
  EXPECT_TRUE(Has(change, R"("value":7)"));
}

TEST_F(LiveTest, WithoutASubscriptionNothingIsTold) {
  WebClient client = stand.Connect();
  client.Upgrade();
  stand.Move(7);
  client.SendText(R"({"jsonrpc":"2.0","id":1,"method":"session.who"})");
  EXPECT_TRUE(Has(client.ReadText(), R"("id":1,"result")"));
}

TEST_F(LiveTest, ChangesFollowEachOtherWithoutAGap) {
  WebClient client = stand.Subscribe();
  uint64_t told = stand.Sequence();
  for (unsigned value = 1; value <= 200; ++value) stand.Move(value);
  while (told < stand.Sequence()) {
    const std::string change = client.ReadText();
    EXPECT_EQ(Number(change, "after"), told);
    told = Number(change, "seq");
  }
}

TEST_F(LiveTest, WhatIsNotPublishedYetIsToldOnceAndWhole) {
  WebClient client = stand.Connect();
  client.Upgrade();
  stand.Run([&] {
    stand.bus.TakeInput({0xF, 3, 9}, stand.clock.Now());
    stand.bus.TakeInput({0x8, 0, 5}, stand.clock.Now());
  });
  client.SendText(R"({"jsonrpc":"2.0","id":1,"method":"live.subscribe"})");
  EXPECT_TRUE(Has(client.ReadText(), R"("value":9)"));
  stand.Run([&] { stand.bus.Publish(); });
  stand.Move(10);
  const std::string change = client.ReadText();
  EXPECT_TRUE(Has(change, R"("value":10)"));
  EXPECT_TRUE(Has(change, R"("events":[])"));
}

TEST_F(LiveTest, AnEventThatIsNotPublishedYetComesOnce) {
  WebClient client = stand.Subscribe();
  stand.Run([&] {
    stand.bus.TakeInput({0xF, 3, 9}, stand.clock.Now());
    stand.bus.Publish();
    stand.bus.TakeInput({0x8, 0, 5}, stand.clock.Now());
  });
  EXPECT_TRUE(Has(client.ReadText(), R"("events":[])"));
  stand.Run([&] { stand.bus.Publish(); });
  EXPECT_TRUE(Has(client.ReadText(), R"("event_type":"press")"));
  stand.Move(10);
  EXPECT_TRUE(Has(client.ReadText(), R"("events":[])"));
}

TEST_F(LiveTest, WhoComesBackHearsTheEventsSince) {
  stand.PressKey();
  const uint64_t before = stand.Sequence();
  stand.PressKey();
  WebClient client = stand.Connect();
  client.Upgrade();
  client.SendText(R"({"jsonrpc":"2.0","id":1,"method":"live.subscribe","params":{"after":)" +
                  std::to_string(before) + "}}");
  const std::string state = client.ReadText();
  EXPECT_TRUE(Has(state, R"("event_type":"press","code":5)"));
  EXPECT_TRUE(Has(state, R"("event_type":"release","code":5)"));
  EXPECT_TRUE(Has(state, R"("lost":0)"));
}

TEST_F(LiveTest, AllHearTheSameBytes) {
  std::vector<WebClient> clients;
  for (int i = 0; i < 20; ++i) clients.push_back(stand.Subscribe());
  stand.Move(99);
  const std::string first = clients[0].ReadText();
  for (size_t i = 1; i < clients.size(); ++i) EXPECT_EQ(clients[i].ReadText(), first);
}

TEST_F(LiveTest, ManyRequestsMayBeUnderWay) {
  WebClient client = stand.Connect();
  client.Upgrade();
  std::string all;
  for (int i = 0; i < 100; ++i)
    all += FrameText(1, R"({"jsonrpc":"2.0","id":)" + std::to_string(i) +
                            R"(,"method":"thing.get","params":{"name":"lamp"}})");
  client.Send(all);
  for (int i = 0; i < 100; ++i)
    EXPECT_EQ(Number(client.ReadText(), "id"), static_cast<unsigned>(i));
}

TEST_F(LiveTest, ARequestWithoutAnIdIsNotAnswered) {
  WebClient client = stand.Connect();
  client.Upgrade();
  for (int i = 0; i < 50; ++i)
    client.SendText(R"({"jsonrpc":"2.0","method":"thing.get","params":{"name":"lamp"}})");
  client.SendText(R"({"jsonrpc":"2.0","id":1,"method":"session.who"})");
  EXPECT_EQ(Number(client.ReadText(), "id"), 1U);
}

TEST_F(LiveTest, ARoleCountsOnAWebSocketToo) {
  const std::string token = stand.AddToken("scripts", access::Role::kView);
  WebClient client = stand.Connect();
  EXPECT_EQ(client.Upgrade("/api/live", "Authorization: Bearer " + token + "\r\n").status, 101);
  client.SendText(
      R"({"jsonrpc":"2.0","id":1,"method":"thing.put","params":{"name":"lamp","value":1}})");
  EXPECT_TRUE(Has(client.ReadText(), R"("status":403)"));
}

TEST_F(LiveTest, AWebSocketEndsWithItsSession) {
  const std::string cookie = "Cookie: " + stand.AddAccount() + "\r\n";
  WebClient client = stand.Connect();
  EXPECT_EQ(client.Upgrade("/api/live", cookie + "Origin: http://localhost\r\n").status, 101);
  stand.Connect().Ask(RequestText("DELETE", "/api/session", cookie));
  ExpectClosedWith(client, kNotAllowed);
}

TEST_F(LiveTest, ASessionThatAWebSocketUsesDoesNotExpire) {
  const std::string cookie = "Cookie: " + stand.AddAccount() + "\r\n";
  const auto status = [&] {
    const Reply reply = stand.Connect().Ask(RequestText("GET", "/api/long?size=1", cookie));
    return reply.status;
  };
  WebClient client = stand.Connect();
  client.Upgrade("/api/live", cookie + "Origin: http://localhost\r\n");
  for (int i = 0; i < 92; ++i) {  // pings for a little more than an hour
    stand.clock.Pass(std::chrono::seconds(40));
    ASSERT_EQ(client.ReadFrame().opcode, 9);
    client.SendFrame(10, "");
    client.SendText(R"({"jsonrpc":"2.0","id":1,"method":"session.who"})");
    client.ReadText();  // so the pong has come too
  }
  // By the log-in alone it would be over.
  stand.clock.Pass(std::chrono::days(30) - std::chrono::minutes(30));
  EXPECT_EQ(status(), 200);
  stand.clock.Pass(std::chrono::days(30));
  EXPECT_EQ(status(), 401);
}

TEST_F(LiveTest, AWebSocketEndsWithItsAccount) {
  const std::string cookie = "Cookie: " + stand.AddAccount() + "\r\n";
  WebClient client = stand.Connect();
  client.Upgrade("/api/live", cookie + "Origin: http://localhost\r\n");
  stand.ChangePassword();
  ExpectClosedWith(client, kNotAllowed);
}

TEST_F(LiveTest, AWebSocketEndsWithItsToken) {
  const std::string token = stand.AddToken("scripts", access::Role::kView);
  WebClient client = stand.Connect();
  client.Upgrade("/api/live", "Authorization: Bearer " + token + "\r\n");
  WebClient other = stand.Subscribe();
  stand.Run([&] { stand.access.RemoveToken("scripts"); });
  ExpectClosedWith(client, kNotAllowed);
  stand.Move(3);
  EXPECT_TRUE(Has(other.ReadText(), R"("value":3)"));
}

TEST_F(LiveTest, WhoCameWithoutALoginEndsWithTheFirstAccount) {
  WebClient client = stand.Subscribe();
  WebClient local = stand.ConnectLocally();
  local.Upgrade();
  stand.AddAccount();
  ExpectClosedWith(client, kNotAllowed);
  local.SendText(R"({"jsonrpc":"2.0","id":1,"method":"session.who"})");
  EXPECT_TRUE(Has(local.ReadText(), R"("role":"admin")"));
}

// Whoever has gone is told nothing: its memory is somebody else's.
TEST_F(LiveTest, AConversationThatFailsIsForgotten) {
  Counters counters;
  Live live(stand.house, counters);
  auto talk = stand.Run([&] {
    const auto streams = std::make_shared<Streams>(stand.clock, Places(1, {}));
    auto stream = std::make_shared<Stream>(streams, Stream::Socket(stand.context), Peer{}, nullptr);
    Request longer_than_a_field;
    longer_than_a_field.fields = {{"Cookie", std::string(70'000, 'x')}};
    return boost::asio::co_spawn(stand.context,
                                 live.Talk(std::move(stream), std::move(longer_than_a_field), {}),
                                 boost::asio::use_future);
  });
  EXPECT_THROW(talk.get(), std::length_error);
  const auto others = stand.Run(
      [] { return std::vector<std::string>(8, std::string(sizeof(LiveClient) + 15, '\xA5')); });
  stand.Move(7);
  stand.Stop();
}

}  // namespace
}  // namespace hub::http
