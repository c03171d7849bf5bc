// Clients that read slowly or not at all: what they cost, and that the others do not notice.
#include "Stand.h"
#include "kit/Ports.h"

namespace hub::http {
namespace {

constexpr unsigned kChanges = 10'000;

class SlowReadersTest : public testing::Test {
 protected:
  static uint64_t Number(const std::string& message, const std::string& name) {
    const size_t at = message.find("\"" + name + "\":");
    return std::stoull(message.substr(at + name.size() + 3));
  }

  static size_t CountOf(const std::string& message, const std::string& text) {
    size_t count = 0;
    for (size_t at = 0; (at = message.find(text, at)) != std::string::npos; ++at) ++count;
    return count;
  }

  WebClient SubscribeSlowly() {
    WebClient client = stand.Connect();
    client.KeepInputSmall();
    client.Upgrade();
    client.SendText(R"({"jsonrpc":"2.0","id":1,"method":"live.subscribe"})");
    client.ReadText();
    return client;
  }

  // All that is told up to the present.
  struct Heard {
    uint64_t messages = 0;
    uint64_t events = 0;
    uint64_t lost = 0;
    std::string last;
  };
  Heard ReadUpToNow(WebClient& client, uint64_t told) {
    Heard heard;
    const uint64_t now = stand.Sequence();
    while (told < now) {
      heard.last = client.ReadText();
      EXPECT_EQ(Number(heard.last, "after"), told);
      told = Number(heard.last, "seq");
      ++heard.messages;
      heard.events += CountOf(heard.last, "\"event_type\"");
      heard.lost += Number(heard.last, "lost");
    }
    return heard;
  }

  Counters Count() {
    return stand.Run([&] { return stand.server->Count(); });
  }

  Stand stand;
};

TEST_F(SlowReadersTest, WhoNeverReadsHasNoQueueAndSlowsNobody) {
  WebClient stuck = SubscribeSlowly();
  WebClient quick = stand.Subscribe();
  const uint64_t start = stand.Sequence();
  uint64_t heard = 0;
  uint64_t told = start;
  for (unsigned change = 1; change <= kChanges; ++change) {
    stand.Move(change % 256);
    while (told < start + change) {
      told = Number(quick.ReadText(), "seq");
      ++heard;
    }
  }
  EXPECT_EQ(heard, kChanges);
  // A message has over 300 bytes, and the kernel holds less than 256 KB of them.
  EXPECT_LT(Count().messages - heard, 850U);
  const Heard late = ReadUpToNow(stuck, start);
  EXPECT_NE(late.last.find(R"("value":)" + std::to_string(kChanges % 256) + ","),
            std::string::npos);
  EXPECT_LT(late.messages, 851U);
}

TEST_F(SlowReadersTest, ASlowReaderHearsEachEventOrHowManyWereLost) {
  WebClient slow = SubscribeSlowly();
  const uint64_t start = stand.Sequence();
  for (unsigned press = 0; press < 3'000; ++press) stand.PressKey();
  const Heard heard = ReadUpToNow(slow, start);
  EXPECT_EQ(heard.events + heard.lost, 6'000U);
  EXPECT_GT(heard.lost, 0U);
  EXPECT_GE(heard.events, 1'000U);
  EXPECT_EQ(Count().lost, heard.lost);
}

TEST_F(SlowReadersTest, AShortDelayLosesNoEvent) {
  WebClient slow = SubscribeSlowly();
  const uint64_t start = stand.Sequence();
  for (unsigned press = 0; press < 450; ++press) stand.PressKey();
  const Heard heard = ReadUpToNow(slow, start);
  EXPECT_EQ(heard.events, 900U);
  EXPECT_EQ(heard.lost, 0U);
}

TEST_F(SlowReadersTest, WhoAsksAndNeverReadsIsNotReadAnyMore) {
  WebClient client = stand.Connect();
  client.KeepInputSmall();
  client.Upgrade();
  const std::string ask =
      FrameText(1, R"({"jsonrpc":"2.0","id":1,"method":"long.get","params":{"size":10000}})");
  std::string all;
  for (int i = 0; i < 2'000; ++i) all += ask;
  const size_t sent = client.SendWhatFits(all);
  ASSERT_GT(sent, 100 * ask.size());
  EXPECT_TRUE(WaitUntil([&] { return Count().calls >= 16; }));
  EXPECT_EQ(stand.Connect().Get("/healthz").status, 200);
  // It is dropped like everybody who is silent.
  EXPECT_TRUE(WaitUntil([&] {
    stand.clock.Pass(std::chrono::seconds(1));
    return stand.Connect().Get("/metrics").body.find("\nqelm_clients{door=\"websocket\"} 0\n") !=
           std::string::npos;
  }));
  // Seven answers wait at most, and what the kernel takes.
  EXPECT_LT(Count().calls, 60U);
}

TEST_F(SlowReadersTest, AnAnswerLongerThanAllBoundsStillArrives) {
  WebClient client = stand.Connect();
  client.Upgrade();
  client.SendText(R"({"jsonrpc":"2.0","id":1,"method":"long.get","params":{"size":400000}})");
  EXPECT_GT(client.ReadText().size(), 400'000U);
}

TEST_F(SlowReadersTest, TooManyLongAnswersAtOnceEndTheConnection) {
  WebClient client = stand.Connect();
  client.KeepInputSmall();
  client.Upgrade();
  std::string all;
  for (int i = 0; i < 16; ++i)
    all += FrameText(1, R"({"jsonrpc":"2.0","id":1,"method":"late.get"})");
  client.Send(all);
  EXPECT_TRUE(WaitUntil([&] { return Count().cut == 1; }));
}

TEST_F(SlowReadersTest, WhoseLoginIsOverAsksNothingMoreWhileHeDoesNotRead) {
  const std::string cookie = "Cookie: " + stand.AddAccount() + "\r\n";
  WebClient client = stand.Connect();
  client.KeepInputSmall();
  client.Upgrade("/api/live", cookie + "Origin: http://localhost\r\n");
  client.SendText(R"({"jsonrpc":"2.0","id":1,"method":"live.subscribe"})");
  client.ReadText();
  for (unsigned change = 0; change < 2'000; ++change) stand.Move(change % 256);
  stand.ChangePassword();
  client.SendText(R"({"jsonrpc":"2.0","id":2,"method":"session.who"})");
  // Who has no room for what comes may not take the receipt of what he sent either.
  WaitUntil([&] { return AllIsRead(stand.port); }, std::chrono::seconds(2));
  stand.Connect().Get("/healthz");
  EXPECT_EQ(Count().calls, 1U);
}

TEST_F(SlowReadersTest, WhoAnswersPingsAndNeverReadsIsDroppedToo) {
  WebClient client = SubscribeSlowly();
  for (unsigned change = 0; change < 2'000; ++change) stand.Move(change % 256);
  const auto is_there = [&] {
    return stand.Connect().Get("/metrics").body.find("\nqelm_clients{door=\"websocket\"} 1\n") !=
           std::string::npos;
  };
  ASSERT_TRUE(is_there());
  EXPECT_TRUE(WaitUntil([&] {
    client.TrySend(FrameText(10, ""));
    // Not where the hub has no room for the answer.
    WaitUntil([&] { return AllIsRead(stand.port); }, std::chrono::milliseconds(200));
    stand.clock.Pass(std::chrono::seconds(1));
    return !is_there();
  }));
  EXPECT_GE(stand.clock.Passed(), std::chrono::seconds(45));
}

}  // namespace
}  // namespace hub::http
