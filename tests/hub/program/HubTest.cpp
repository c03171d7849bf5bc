// qelm-hub as a process on a site: the daemon's ports again, and what outlives a restart.
#include <signal.h>

#include "SiteTest.h"
#include "kit/Ports.h"

namespace {

constexpr int kTextCae = 5110;
constexpr int kTextIo = 5111;
constexpr int kTextMon = 5112;
constexpr int kWeb = 5080;
constexpr char kSettings[] = "/etc/qelm/qelm-hub.toml";

// A client of a server that ends the connection.
class WholeAnswer : public Client {
 public:
  using Client::Client;
  std::string ReadAll() {
    while (ReadMore()) continue;
    return Take(unread_.size());
  }
};

class HubTest : public SiteTest {
 protected:
  void TearDown() override {
    if (HasFailure() && hub) std::cout << "--- hub\n" << hub->Errors();
    hub.reset();
    SiteTest::TearDown();
  }

  // Bus, daemon and hub; the lamps answer.
  void StartAll() {
    WriteConfig({.percent = "80", .poll = "TRUE"});
    StartBus();
    StartDaemon();
    WriteFile(kSettings, "[daemon]\ncae = " + std::to_string(::kCae) +
                             "\nio = " + std::to_string(::kIo) +
                             "\nmon = " + std::to_string(::kMon) + "\nlog = \"" + kLogFile +
                             "\"\n[store]\nfolder = \"/run/test/store\"\n");
    StartHub();
  }

  void StartHub() {
    hub.reset();
    hub = std::make_unique<virtualbus::Program>(
        folder_, QELM_HUB_BINARY,
        std::vector<std::string>{"--config", kSettings, "--socket", "/run/test/hub.sock"});
    ASSERT_TRUE(WaitUntil([] { return IsListening(kTextIo) && IsListening(kWeb); }));
    ASSERT_TRUE(WaitUntil([this] {
      return Ask("GET", "/api/cards/5").find(R"("state":"present")") != std::string::npos;
    }));
  }

  // A request over HTTP and all of its answer.
  static std::string Ask(const std::string& verb, const std::string& path,
                         const std::string& body = "") {
    WholeAnswer client(kWeb);
    std::string request =
        verb + " " + path + " HTTP/1.1\r\nHost: localhost\r\nConnection: close\r\n";
    if (!body.empty())
      request +=
          "Content-Type: application/json\r\nContent-Length: " + std::to_string(body.size()) +
          "\r\n";
    client.Send(request + "\r\n" + body);
    return client.ReadAll();
  }

  static Client Greeted(int port) {
    Client client(port);
    client.ExpectBytes(port == kTextCae
                           ? "QELM CAE interface is ready\r\n(Type HELP for help)\r\n>\r\n\r"
                       : port == kTextIo ? "QELM IO interface is ready\r\n\r"
                                         : "QELM MON interface is ready\r\n\r");
    return client;
  }

  std::unique_ptr<virtualbus::Program> hub;

 private:
  TempDir folder_;
};

}  // namespace

TEST_F(HubTest, AConsoleClientGetsTheBytesOfTheDaemon) {
  StartAll();
  Client first = Greeted(kTextCae);
  Client second = Greeted(kTextCae);
  first.Send("DRVVER\r\n");
  first.ExpectBytes("CIA: DRIVER VERSION 1.20\r\n\r>\r\n\r");
  first.Send("NOSUCH\n");  // LF alone ends a line too
  first.ExpectBytes("CIE: UNKNOWN COMMAND \r\n>\r\n\r");
  for (const char* piece : {"DR", "VV", "ER\r", "\n"}) second.Send(piece);
  second.ExpectBytes("CIA: DRIVER VERSION 1.20\r\n\r>\r\n\r");
  first.ExpectSilence();
  first.Send("EXIT\r\n");
  first.ExpectBytes("QELM: Bye Bye...\r\n\r");
  first.ExpectClosed();
  second.Send("DRVVER\r\n");  // only that client's session has ended
  second.ExpectBytes("CIA: DRIVER VERSION 1.20\r\n\r>\r\n\r");
}

TEST_F(HubTest, CommandsOfManyIoClientsReachTheCard) {
  StartAll();
  Client first = Greeted(kTextIo);
  Client second(kTextIo);
  second.Send("a5b1dFE\r\na5b0d7");  // before its greeting has come; the rest has no end
  second.HalfClose();
  ExpectHeld("5", "Lines 07 FE");
  first.Send("a5b0dFE\r\n");
  ExpectHeld("5", "Lines FE FE");
}

TEST_F(HubTest, AnIllegalCommandIsAnsweredToWhoSentIt) {
  StartAll();
  Client sender = Greeted(kTextIo);
  Client other = Greeted(kTextIo);
  sender.Send("a5x1\r\n");
  sender.ExpectBytes("COE:Illegal command -> a5x1\r\n\r");
  sender.Send("a5lLO\r\n");  // no display
  sender.ExpectBytes("COE:Illegal command -> a5lLO\r\n\r");
  other.ExpectSilence();
}

TEST_F(HubTest, EveryIoClientGetsEveryReport) {
  StartAll();
  Client first = Greeted(kTextIo);
  Client second = Greeted(kTextIo);
  Client monitor = Greeted(kTextMon);
  Bus("press 3 06");
  first.ExpectBytes("a3b0d40\r\n\r");
  second.ExpectBytes("a3b0d40\r\n\r");
  monitor.ExpectBytes("a3b0d40\r\n\r");
}

TEST_F(HubTest, ATextIsCutAtItsRowAndALongLineEndsNothing) {
  StartAll();
  Client client = Greeted(kTextIo);
  client.Send("aElPAp0301t" + std::string(60, 'x') + "\r\n");
  ExpectHeld("E", "Row1 \"   xxxxxxxxxxxxxxxxx\"");
  client.Send(std::string(5000, 'a') + "\r\n");
  client.ExpectBytes("COE:a line of more than 1024 characters\r\n\r");
  client.Send("a5b0dFE\r\n");
  ExpectHeld("5", "Lines FE FF");
}

TEST_F(HubTest, SixtyFourClientsAreServedAndOneMoreIsClosed) {
  StartAll();
  std::vector<Client> clients;
  for (int i = 0; i < 64; ++i) clients.push_back(Greeted(kTextIo));
  Client late(kTextIo);
  late.ExpectClosed();
  clients.pop_back();
  ASSERT_TRUE(WaitUntil([] { return Client(kTextIo).IsServed(); }));
}

TEST_F(HubTest, ItEndsAtOnceBesideItsClients) {
  StartAll();
  Client console = Greeted(kTextCae);
  Client monitor = Greeted(kTextMon);
  hub->Signal(SIGTERM);
  EXPECT_EQ(hub->WaitForExit(), 0);
  console.ExpectClosed();
  monitor.ExpectClosed();
}

TEST_F(HubTest, WhatWasAskedForOutlivesHubAndDaemon) {
  StartAll();
  EXPECT_NE(Ask("PUT", "/api/channels/5.0", R"({"value":true})").find("200 OK"), std::string::npos);
  ExpectHeld("5", "Lines FE FF");
  hub->Signal(SIGTERM);
  EXPECT_EQ(hub->WaitForExit(), 0);
  daemon.Kill(SIGKILL);
  daemon.WaitForEnd();
  StartDaemon();
  StartHub();
  Client client = Greeted(kTextIo);
  client.Send("a5b1dFE\r\n");  // would have switched the lamp off: the daemon's record began anew
  ExpectHeld("5", "Lines FE FE");
}
