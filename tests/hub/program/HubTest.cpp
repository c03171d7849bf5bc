// qelm-hub as a process on a site: the daemon's ports again, and what outlives a restart.
#include <signal.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>

#include "HubSite.h"
#include "kit/Ports.h"

class HubTest : public HubSite {};

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

TEST_F(HubTest, ItMakesTheFolderOfItsSocketAndCanBeWithoutIt) {
  const TempDir folder;
  WriteSettings();
  const auto start = [&folder] {
    return virtualbus::Program(folder, QELM_HUB_BINARY, {"--config", "/etc/qelm/qelm-hub.toml"});
  };
  {
    virtualbus::Program first = start();
    EXPECT_TRUE(WaitUntil([] { return access("/run/qelm-hub/hub.sock", F_OK) == 0; }));
  }
  std::filesystem::remove_all("/run/qelm-hub");
  WriteFile("/run/qelm-hub", "a file in its place");
  virtualbus::Program second = start();
  EXPECT_TRUE(WaitUntil([] { return IsListening(kWeb); }));
  EXPECT_TRUE(WaitUntil([&second] {
    return second.Errors().find("cannot listen on /run/qelm-hub/hub.sock: ") != std::string::npos;
  }));
}

TEST_F(HubTest, WithoutSettingsItFindsADaemonOnItsUsualPortsAndServesLoopback) {
  ASSERT_EQ(std::system("mount -t tmpfs tmpfs /var/lib"), 0);  // its store
  WriteConfig({.percent = "80", .poll = "TRUE"});
  std::string config = ReadFile(kConfigPath);
  for (const char port : {'1', '2', '3'})  // 5001 to 5003
    config.replace(config.find(std::string("500") + port), 4, std::string("501") + char(port - 1));
  WriteConfigText(config);
  StartBus();
  StartDaemon();
  std::filesystem::remove("/etc/qelm/qelm-hub.toml");
  const TempDir folder;
  virtualbus::Program bare(folder, QELM_HUB_BINARY, {"--socket", kHubSocket});
  ASSERT_TRUE(WaitUntil([] { return IsListening(kTextIo) && IsListening(kWeb); }));
  EXPECT_TRUE(WaitUntil([] {
    return Ask("GET", "/api/cards/5").find(R"("state":"present")") != std::string::npos;
  })) << bare.Errors();
}

// A pulse that was under way comes back to what it began from.
TEST_F(HubTest, WhatWasAskedForOutlivesAPowerCut) {
  StartAll();
  EXPECT_EQ(StatusOf(Ask("PUT", "/api/channels/5.0", R"({"value":true})")), 200);
  EXPECT_EQ(StatusOf(Ask("PUT", "/api/channels/5.1", R"({"value":true,"pulse":600000})")), 200);
  ExpectHeld("5", "Lines FC FF");
  ASSERT_TRUE(WaitUntil([] {
    return AskLocally("GET", "/metrics").find("\nqelm_store_documents_waiting 0\n") !=
           std::string::npos;
  }));
  hub->Signal(SIGKILL);
  EXPECT_EQ(hub->WaitForExit(), -1);
  daemon.Kill(SIGKILL);
  daemon.WaitForEnd();
  StartDaemon();
  StartHub();
  ExpectHeld("5", "Lines FE FF");
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
