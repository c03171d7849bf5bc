// The frames of a WebSocket, written by hand: whole, in pieces, and those that break the rules.
#include "Stand.h"

namespace hub::http {
namespace {

constexpr int kMore = 0;
constexpr int kText = 1;
constexpr int kBinary = 2;
constexpr int kClose = 8;
constexpr int kPing = 9;
constexpr int kPong = 10;

constexpr char kAsk[] = R"({"jsonrpc":"2.0","id":7,"method":"thing.get","params":{"name":"lamp"}})";
constexpr char kAnswer[] = R"({"jsonrpc":"2.0","id":7,"result":{"name":"lamp"}})";

class WebSocketTest : public testing::Test {
 protected:
  WebSocketTest() { handshake = client.Upgrade(); }

  // The server ends it with this code.
  void ExpectClosedWith(int code) {
    const Frame frame = client.ReadFrame();
    EXPECT_EQ(frame.opcode, kClose);
    ASSERT_GE(frame.payload.size(), 2U);
    EXPECT_EQ(static_cast<unsigned char>(frame.payload[0]) << 8 |
                  static_cast<unsigned char>(frame.payload[1]),
              code);
    EXPECT_TRUE(client.Ends());
    EXPECT_EQ(stand.Connect().Get("/healthz").status, 200);
  }

  Stand stand;
  WebClient client = stand.Connect();
  Reply handshake;
};

TEST_F(WebSocketTest, TheHandshakeIsAccepted) {
  EXPECT_EQ(handshake.status, 101);
  EXPECT_EQ(handshake.fields.at("sec-websocket-accept"), "s3pPLMBiTxaQ9kYGzzhZRbK+xOo=");
  EXPECT_FALSE(handshake.fields.contains("sec-websocket-extensions"));
}

TEST_F(WebSocketTest, AHandshakeThatIsNoneIsRefused) {
  WebClient other = stand.Connect();
  const Reply reply = other.Get("/api/live",
                                "Upgrade: websocket\r\nConnection: Upgrade\r\n"
                                "Sec-WebSocket-Version: 12\r\nSec-WebSocket-Key: x\r\n");
  EXPECT_GE(reply.status, 400);
  EXPECT_TRUE(other.Ends());
}

TEST_F(WebSocketTest, ARequestIsAnswered) {
  client.SendText(kAsk);
  EXPECT_EQ(client.ReadText(), kAnswer);
}

TEST_F(WebSocketTest, TheFrameGoesOutInTheseBytes) {
  client.Send(std::string("\x81\x82\x37\x7A\x21\x3D", 6) + std::string("\x4C\x07", 2));  // {}
  const Frame frame = client.ReadFrame();
  EXPECT_EQ(frame.opcode, kText);
  EXPECT_NE(frame.payload.find(R"("code":-32600)"), std::string::npos);
}

TEST_F(WebSocketTest, AMessageMayComeInFragmentsWithAPingBetween) {
  const std::string ask = kAsk;
  client.SendFrame(kText, ask.substr(0, 5), false);
  client.SendFrame(kMore, "", false);
  client.SendFrame(kPing, "there?");
  client.SendFrame(kMore, ask.substr(5, 20), false);
  client.SendFrame(kMore, ask.substr(25), true);
  const Frame pong = client.ReadFrame();
  EXPECT_EQ(pong.opcode, kPong);
  EXPECT_EQ(pong.payload, "there?");
  EXPECT_EQ(client.ReadText(), kAnswer);
}

TEST_F(WebSocketTest, AFrameMayComeByteByByte) {
  for (const char byte : FrameText(kText, kAsk)) client.Send(std::string(1, byte));
  EXPECT_EQ(client.ReadText(), kAnswer);
}

TEST_F(WebSocketTest, ABinaryFrameIsNotTaken) {
  client.SendFrame(kBinary, kAsk);
  ExpectClosedWith(1003);
}

TEST_F(WebSocketTest, InvalidUtf8EndsIt) {
  client.SendText("{\"a\":\"\xC3\x28\"}");
  ExpectClosedWith(1007);
}

TEST_F(WebSocketTest, AMessageOfSixtyFourKilobytesIsTakenAndOneMoreByteIsNot) {
  client.SendText(kAsk + std::string(65536 - std::string(kAsk).size(), ' '));
  EXPECT_EQ(client.ReadText(), kAnswer);
  client.SendText(kAsk + std::string(65537 - std::string(kAsk).size(), ' '));
  ExpectClosedWith(1009);
}

TEST_F(WebSocketTest, EndlessFragmentsAreNotTaken) {
  client.SendFrame(kText, std::string(30'000, ' '), false);
  for (int i = 0; i < 3; ++i) client.TrySend(FrameText(kMore, std::string(30'000, ' '), false));
  ExpectClosedWith(1009);
}

TEST_F(WebSocketTest, AFrameThatIsNotMaskedEndsIt) {
  client.Send(std::string("\x81\x02{}", 4));
  ExpectClosedWith(1002);
}

TEST_F(WebSocketTest, AnUnknownFrameEndsIt) {
  client.SendFrame(3, "x");
  ExpectClosedWith(1002);
}

TEST_F(WebSocketTest, ACloseIsAnswered) {
  client.SendFrame(kClose, std::string("\x03\xE8", 2));  // 1000
  ExpectClosedWith(1000);
}

TEST_F(WebSocketTest, WhatIsNoRequestIsAnsweredWithAnErrorAndTheNextIsTaken) {
  client.SendText("{");
  EXPECT_NE(client.ReadText().find(R"("code":-32700)"), std::string::npos);
  client.SendText("[" + std::string(kAsk) + "]");
  EXPECT_NE(client.ReadText().find(R"("code":-32600)"), std::string::npos);
  client.SendText(R"({"jsonrpc":"2.0","id":1,"method":"nothing"})");
  EXPECT_NE(client.ReadText().find(R"("code":-32601)"), std::string::npos);
  client.SendText(kAsk);
  EXPECT_EQ(client.ReadText(), kAnswer);
}

TEST_F(WebSocketTest, WhatWasSentBeforeTheHandshakeIsRefused) {
  WebClient other = stand.Connect();
  other.Send(
      RequestText("GET", "/api/live",
                  "Upgrade: websocket\r\nConnection: Upgrade\r\nSec-WebSocket-Version: 13\r\n"
                  "Sec-WebSocket-Key: dGhlIHNhbXBsZSBub25jZQ==\r\n") +
      FrameText(kText, kAsk));
  EXPECT_EQ(other.Read().status, 400);
}

TEST_F(WebSocketTest, WhoAnswersNoPingIsDroppedAfterFortyFiveSeconds) {
  using std::chrono::seconds;
  client.SendText(kAsk);
  EXPECT_EQ(client.ReadText(), kAnswer);
  const auto before = stand.clock.Passed();
  const auto passed = [&] { return stand.clock.Passed() - before; };
  EXPECT_TRUE(WaitUntil([&] {
    if (client.IsEnded()) return true;
    if (passed() < seconds(47)) stand.clock.Pass(std::chrono::milliseconds(250));
    return false;
  }));
  EXPECT_GE(passed(), seconds(45));
}

TEST_F(WebSocketTest, WhoAnswersPingsStays) {
  for (int i = 0; i < 10; ++i) {
    stand.clock.Pass(std::chrono::seconds(15));
    ASSERT_EQ(client.ReadFrame().opcode, kPing);
    client.SendFrame(kPong, "");
    client.SendText(kAsk);
    EXPECT_EQ(client.ReadText(), kAnswer);  // so the pong has come too
  }
}

}  // namespace
}  // namespace hub::http
