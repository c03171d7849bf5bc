// What the hub tells on a real broker, and how it bears one that comes, goes, refuses or stands
// still.
#include "BrokerSite.h"

#include <signal.h>

#include "kit/Listener.h"
#include "kit/Proc.h"

class BrokerTest : public BrokerSite {
 protected:
  // A key is down: only from then on the hub knows what a further byte of the card means.
  void Ready() {
    StartBroker();
    StartAllWith();
    ExpectBroker(R"("state":"up")");
    Bus("press 8 01");
    EXPECT_TRUE(WaitUntil([] {
      return AskLocally("GET", "/api/channels/8.0").find(R"("known":true)") != std::string::npos;
    }));
    Listen();
    ExpectLevel("qelm/bench/5/status online");
  }
};

TEST_F(BrokerTest, TheBusIsKeptThereAsItIs) {
  Ready();
  ExpectLevel("qelm/bench/status online");
  EXPECT_TRUE(WaitUntil([this] { return HasHeard("\n1 qelm/bench/bus {\"id\":\""); }));
  EXPECT_TRUE(HasHeard(R"("address":"5","kind":"digital-output","name":null,"state":"present")"));
  ExpectLevel("qelm/bench/5/0 None");
  ExpectLevel("qelm/bench/3/0 OFF");
  ExpectLevel("qelm/bench/F/5 0");
  ExpectLevel(
      R"(qelm/bench/E/glass {"rows":["                    ","                    ",)"
      R"("                    ","                    "],"light":null,"cursor":null,"blink":null})");
  EXPECT_FALSE(HasHeard("qelm/bench/9/0"));
  EXPECT_FALSE(HasHeard("/event"));
}

TEST_F(BrokerTest, WhatChangesIsToldAndKept) {
  Ready();
  Bus("press 3 06");
  ExpectHeard("0 qelm/bench/3/6 ON");
  Bus("press 8 05");
  ExpectHeard(R"(0 qelm/bench/8/event {"event_type":"press","code":5})");
  EXPECT_EQ(StatusOf(Ask("PUT", "/api/channels/5.0", R"({"value":true})")), 200);
  ExpectHeard("0 qelm/bench/5/0 ON");
  Listen();
  ExpectLevel("qelm/bench/5/0 ON");
  ExpectLevel("qelm/bench/3/6 ON");
  EXPECT_FALSE(HasHeard("/event"));
}

TEST_F(BrokerTest, ItComesLater) {
  StartAllWith();
  ExpectBroker(R"("state":"connecting","host":"127.0.0.1","detail":"Connection refused")");
  EXPECT_EQ(StatusOf(Ask("PUT", "/api/channels/5.0", R"({"value":true})")), 200);
  StartBroker();
  ExpectBroker(R"("state":"up")");
  Listen();
  ExpectLevel("qelm/bench/5/0 ON");
  ExpectLevel("qelm/bench/status online");
}

TEST_F(BrokerTest, AllIsRightAgainWhenItWasAway) {
  Ready();
  StopBroker();
  ExpectBroker(R"("state":"connecting")");
  Bus("press 3 06");
  Bus("press 8 05");  // the key that was down is let go, too
  EXPECT_EQ(StatusOf(Ask("PUT", "/api/channels/5.7", R"({"value":true})")), 200);
  EXPECT_TRUE(WaitUntil([] { return Metric("qelm_broker_dropped_total") >= 2; }));
  StartBroker();
  ExpectBroker(R"("state":"up")");
  Listen();
  ExpectLevel("qelm/bench/3/6 ON");
  ExpectLevel("qelm/bench/5/7 ON");
  ExpectLevel("qelm/bench/8/0 5");
  ExpectLevel("qelm/bench/status online");
  EXPECT_FALSE(HasHeard("/event"));  // what was then is not told now
  const std::string journal = AskLocally("GET", "/api/journal");
  EXPECT_NE(journal.find(R"("kind":"broker","text":"the broker at 127.0.0.1 is there")"),
            std::string::npos);
  EXPECT_NE(journal.find("the broker at 127.0.0.1 is gone: "), std::string::npos);
}

TEST_F(BrokerTest, AHubThatIsKilledIsOfflineAndOneThatEndsToo) {
  Ready();
  hub->Signal(SIGKILL);
  ExpectHeard("0 qelm/bench/status offline");
  StartHub();
  ExpectBroker(R"("state":"up")");
  Listen();
  ExpectLevel("qelm/bench/status online");
  hub->Signal(SIGTERM);
  EXPECT_EQ(hub->WaitForExit(), 0);
  ExpectHeard("0 qelm/bench/status offline");
}

TEST_F(BrokerTest, OneThatStandsStillCostsNobodyElseAnything) {
  Ready();
  broker->Signal(SIGSTOP);
  const long before = ResidentKilobytesOf(hub->Pid());
  for (int i = 0; i < 200; ++i) {
    const char* const value = i % 2 == 0 ? R"({"value":200})" : R"({"value":100})";
    ASSERT_EQ(StatusOf(Ask("PUT", "/api/channels/0.0", value)), 200);
  }
  Bus("press 8 05");
  EXPECT_TRUE(WaitUntil([] { return Metric("qelm_broker_dropped_total") >= 1; }));
  EXPECT_GT(Metric("qelm_broker_merged_total"), 0);
  if (!daemon.Instrumented()) {
    EXPECT_LT(ResidentKilobytesOf(hub->Pid()), before + 4096);
  }
  EXPECT_EQ(StatusOf(Ask("PUT", "/api/channels/0.0", R"({"value":77})")), 200);
  broker->Signal(SIGCONT);
  ExpectHeard("0 qelm/bench/0/0 77");
  EXPECT_FALSE(HasHeard("/event"));
}

TEST_F(BrokerTest, OneThatRefusesSaysWhyAndHearsNoSecretAloud) {
  const TempDir folder;
  const std::string secret = "a-secret-of-the-house";
  const std::string passwords = folder.Path("passwords");
  virtualbus::Program maker(folder, "/usr/bin/mosquitto_passwd",
                            {"-b", "-c", passwords, "hub", "another-secret"});
  ASSERT_EQ(maker.WaitForExit(), 0) << maker.Errors();
  StartBroker("allow_anonymous false\npassword_file " + passwords + "\n");
  const std::string file = folder.Write("password", secret + "\n");
  StartAllWith("user = \"hub\"\npassword-file = \"" + file + "\"\n");
  ExpectBroker(R"("state":"refused","host":"127.0.0.1","detail":"not authorised")");
  const std::string told = AskLocally("GET", "/api/journal") + AskLocally("GET", "/api/bus") +
                           hub->Errors() + ReadFile(ProcPath(hub->Pid(), "cmdline"));
  EXPECT_NE(told.find("the broker at 127.0.0.1 refuses: not authorised"), std::string::npos);
  EXPECT_EQ(told.find(secret), std::string::npos);
  folder.Write("password", "another-secret\n");  // is read again by itself
  ExpectBroker(R"("state":"up")");
}

TEST_F(BrokerTest, AnotherHubOfTheNameIsLeftAlone) {
  StartBroker();
  Tell("qelm/bench/bus", R"({"id":"ffffffff"})", {"-r"});
  Tell("qelm/bench/status", "online", {"-r"});
  Tell("qelm/bench/7/0", "ON", {"-r"});
  StartAllWith();
  ExpectBroker(R"("state":"refused","host":"127.0.0.1",)"
               R"("detail":"another hub (ffffffff) has the name bench")");
  Listen();
  ExpectLevel("qelm/bench/7/0 ON");
  EXPECT_FALSE(HasHeard("qelm/bench/5/status"));
  Tell("qelm/bench/status", "offline", {"-r"});  // its will
  ExpectBroker(R"("state":"up")");
  ExpectHeard("0 qelm/bench/status online");
  ExpectHeard("0 qelm/bench/7/0 ");  // what the dead one has left
}

// Whatever stands before its status: a broker lets some of what it has kept wait.
TEST_F(BrokerTest, AnotherHubIsFoundBehindManyTopics) {
  StartBroker();
  Kept kept{{"qelm/bench/bus", R"({"id":"ffffffff"})"}};
  for (int i = 0; i < 256; ++i)
    kept.emplace_back("qelm/bench/" + std::to_string(i % 8) + '/' + std::to_string(i / 8), "ON");
  kept.emplace_back("qelm/bench/status", "online");
  TellAll(kept);
  StartAllWith();
  ExpectBroker(R"("detail":"another hub (ffffffff) has the name bench")");
}

TEST_F(BrokerTest, WhatAnEarlierHubHasLeftGoesOnceTheCardsAreKnown) {
  StartBroker();
  TellAll({{"qelm/bench/7/status", "online"}, {"qelm/bench/7/0", "ON"}});
  Listen();
  WriteSettings(BrokerSection());
  LaunchHub();
  ExpectHeard("0 qelm/bench/7/status offline");
  EXPECT_FALSE(HasHeard("0 qelm/bench/7/0 "));
  WriteConfig({.percent = "80", .poll = "TRUE"});
  StartBus();
  StartDaemon();
  ExpectHeard("0 qelm/bench/7/0 ");
  ExpectHeard("0 qelm/bench/7/status ");
}

// What others have left is kept in mind until it is taken back. No hub tells topics of that length.
TEST_F(BrokerTest, ATopicThatIsTooLongIsPassedOver) {
  StartBroker();
  const std::string longer = "qelm/bench/" + std::string(246, '0');
  TellAll({{longer, "ON"}, {"qelm/bench/7/0", "ON"}});
  Listen();
  StartAllWith();
  ExpectHeard("0 qelm/bench/7/0 ");
  EXPECT_FALSE(HasHeard("0 " + longer));
}

// Whoever may write there can have the hub wait, but not fill the journal.
TEST_F(BrokerTest, HubsThatComeAndGoAreNotAllToldInTheJournal) {
  StartBroker();
  Tell("qelm/bench/bus", R"({"id":"fffffff0"})", {"-r"});
  Tell("qelm/bench/status", "online", {"-r"});
  StartAllWith();
  ExpectBroker("(fffffff0)");
  Kept others;
  for (int i = 10; i < 60; ++i)
    others.emplace_back("qelm/bench/bus", R"({"id":"ffffff)" + std::to_string(i) + R"("})");
  TellAll(others);
  ExpectBroker("(ffffff59)");
  const std::string journal = AskLocally("GET", "/api/journal?limit=1000");
  size_t count = 0;
  for (size_t at = 0; (at = journal.find("another hub", at)) != std::string::npos; ++at) ++count;
  EXPECT_EQ(count, 12U) << journal;
}

// A lower id than any hub has, which nobody stands behind.
TEST_F(BrokerTest, ALieInItsPlaceIsPutRight) {
  Ready();
  Tell("qelm/bench/bus", R"({"id":"00000000"})", {"-r"});
  ExpectHeard("0 qelm/bench/status offline");
  Listen("qelm/bench/bus");
  EXPECT_TRUE(WaitUntil([this] { return HasHeard(R"("daemon":{"state":"up")"); }));
  ExpectBroker(R"("state":"up")");
}

TEST_F(BrokerTest, AnotherNameMovesTheTopics) {
  StartBroker();
  StartAll("[names]\nbus = \"bench\"\n[broker]\nhost = \"127.0.0.1\"\n");
  ExpectBroker(R"("state":"up")");
  Listen();
  ExpectLevel("qelm/bench/status online");
  EXPECT_EQ(StatusOf(Ask("PATCH", "/api/names", R"({"bus":"the attic"})")), 200);
  ExpectHeard("0 qelm/the-attic/status online");
  Listen();
  ExpectLevel("qelm/the-attic/5/status online");
  EXPECT_FALSE(HasHeard("qelm/bench/"));
}

TEST_F(BrokerTest, SettingsThatAreReadAgainTakeAnotherBroker) {
  StartBroker();
  StartAllWith();
  ExpectBroker(R"("state":"up")");
  Client client = Greeted(kTextIo);
  StopBroker();
  StartBroker("allow_anonymous true\n", 1884);
  WriteSettings(BrokerSection("port = 1884\n"));
  SayHup("settings read again\n");
  ExpectBroker(R"("state":"up")");
  client.Send("a5b1dFE\r\n");  // was not sent away
  ExpectHeld("5", "Lines FF FE");
  WriteSettings();
  hub->Signal(SIGHUP);
  ExpectBroker(R"("broker":null)");
}

// What is longer stays with the broker, or each of them would have to be taken in whole.
TEST_F(BrokerTest, ItIsToldHowLongAPacketMayBe) {
  Listener fake(kBroker);
  StartAllWith();
  EXPECT_NE(fake.Accept().ReadUntil(std::string("\x27\x00\x02\x00\x00", 5)), "");
}

TEST_F(BrokerTest, OneThatKnowsTheOlderVersionOnlyIsSpokenToInIt) {
  Listener fake(kBroker);
  StartAllWith();
  Stream first = fake.Accept();
  EXPECT_EQ(first.Read(9).substr(2), std::string("\0\4MQTT\5", 7));
  first.Send(std::string("\x20\x02\x00\x01", 4));  // this version is refused
  first.Close();
  Stream second = fake.Accept();
  EXPECT_EQ(second.Read(9).substr(2), std::string("\0\4MQTT\4", 7));
  second.Send(std::string("\x20\x02\x00\x00", 4));
  EXPECT_NE(second.ReadUntil("qelm/bench/#").find('\x82'), std::string::npos);
}
