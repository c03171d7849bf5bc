// Two hubs on one broker: this one listens to the other, whose daemon and bus are those of the
// site; and boards that lie.
#include <signal.h>

#include "BrokerSite.h"
#include "kit/Proc.h"

class BoardsSite : public BrokerSite {
 protected:
  void TearDown() override {
    neighbour.reset();
    BrokerSite::TearDown();
  }

  // The hub of the site is the other board, bench; one beside it, desk, listens. It has no daemon.
  void Ready() {
    StartBroker();
    StartAllWith();
    ExpectBroker(R"("state":"up")");
    StartDesk();
  }

  void StartDesk() {
    const std::string file = folder.Write(
        "desk.toml",
        "[daemon]\ncae = 1\nio = 2\nmon = 3\n[http]\nlisten = []\n[text]\nlisten = \"\"\n"
        "[store]\nfolder = \"" +
            folder.Path("desk") +
            "\"\n"
            "[broker]\nhost = \"127.0.0.1\"\nname = \"desk\"\nboards = true\ndiscovery = "
            "\"off\"\n");
    neighbour = std::make_unique<virtualbus::Program>(
        folder, QELM_HUB_BINARY,
        std::vector<std::string>{"--config", file, "--socket", folder.Path("desk.sock")});
  }

  // What qelmctl prints, asking the desk.
  std::string Ctl(std::vector<std::string> words) {
    words.insert(words.begin(), {"--socket", folder.Path("desk.sock")});
    const TempDir own;
    virtualbus::Program ctl(own, QELMCTL, words);
    ctl.WaitForExit();
    return ctl.Output() + ctl.Errors();
  }
  void ExpectCtl(const std::vector<std::string>& words, const std::string& part) {
    std::string out;
    EXPECT_TRUE(WaitUntil([&] {
      out = Ctl(words);
      return out.find(part) != std::string::npos;
    })) << part
        << "\n"
        << out;
  }

  TempDir folder;
  std::unique_ptr<virtualbus::Program> neighbour;
};

TEST_F(BoardsSite, ItsCardsAreSeenAndItsLampsSwitched) {
  Ready();
  ExpectCtl({"--board", "bench", "cards"}, "5  digital-output");
  Bus("press 3 06");
  ExpectCtl({"--board", "bench", "get", "3.6"}, "on\n");
  ExpectCtl({"--board", "bench", "set", "5.0", "on"}, "5.0");
  ExpectHeld("5", "Lines FE FF");
  ExpectCtl({"--board", "bench", "get", "5.0"}, "on\n");
  ExpectCtl({"--board", "bench", "text", "E", "1", "3", "Tail"}, "|   Tail");
  ExpectHeld("E", "Row1 \"   Tail             \"");
  ExpectCtl({"--board", "bench", "light", "E", "on"}, "|   Tail");
  EXPECT_NE(Ctl({"--board", "bench", "set", "3.6", "on"}).find("it has no outputs"),
            std::string::npos);
}

// Its daemon is gone: it says so itself, on its topic for errors.
TEST_F(BoardsSite, WhatItRefusesComesBackInItsWords) {
  Ready();
  ExpectCtl({"--board", "bench", "cards"}, "5  digital-output");
  daemon.Kill(SIGKILL);
  daemon.WaitForEnd();
  ExpectCtl({"--board", "bench", "set", "5.0", "on"}, "the daemon is not there");
}

TEST_F(BoardsSite, OneThatIsKilledIsStaleAndGetsNoCommand) {
  Ready();
  ExpectCtl({"--board", "bench", "set", "5.0", "on"}, "5.0");
  hub->Signal(SIGKILL);
  ExpectCtl({"--board", "bench", "get", "5.0"}, "on (stale)\n");
  ExpectCtl({"--board", "bench", "set", "5.0", "off"}, "bench is offline since ");
  ExpectCtl({"journal"}, "the board bench is gone");
}

TEST_F(BoardsSite, WithoutTheBrokerAllAreStale) {
  Ready();
  ExpectCtl({"--board", "bench", "cards"}, "5  digital-output");
  StopBroker();
  ExpectCtl({"--board", "bench", "set", "5.0", "off"}, "the broker is gone since ");
  StartBroker();
  ExpectCtl({"--board", "bench", "set", "5.0", "off"}, "5.0");
}

// A broker drops what more than a thousand messages of one subscription are to wait for.
TEST_F(BoardsSite, AllOfManyIsTakenIn) {
  Ready();
  Kept kept;
  for (int board = 0; board < 5; ++board) {
    const std::string name = "qelm/b" + std::to_string(board);
    std::string cards;
    for (int card = 0; card < 16; ++card) {
      const std::string address(1, "0123456789ABCDEF"[card]);
      cards += (card > 0 ? "," : "") + (R"({"address":")" + address) +
               R"(","kind":"digital-output","state":"present"})";
      for (int line = 0; line < 16; ++line)
        kept.emplace_back(name + '/' + address + '/' + std::to_string(line), "ON");
    }
    kept.emplace_back(name + "/bus", R"({"id":"0000000)" + std::to_string(board) +
                                         R"(","cards":[)" + cards + "]}");
    kept.emplace_back(name + "/status", "online");
  }
  TellAll(kept);
  neighbour.reset();
  StartDesk();
  for (const char* board : {"b0", "b1", "b2", "b3", "b4"})
    ExpectCtl({"--board", board, "get", "F.15"}, "on\n");
}

// What a hub has told itself comes to it as the others' do.
TEST_F(BoardsSite, ItsOwnTopicsAreNoCommands) {
  StartBroker();
  StartAllWith("boards = true\n");
  ExpectBroker(R"("state":"up")");
  Listen();
  hub->Signal(SIGKILL);
  StartHub();
  ExpectBroker(R"("state":"up")");
  EXPECT_EQ(Ask("PUT", "/api/channels/5.0", R"({"value":true})").substr(9, 3), "200");
  ExpectHeard("0 qelm/bench/5/0 ON");
  EXPECT_FALSE(HasHeard("/error"));
}

TEST_F(BoardsSite, OneThatLiesHurtsItsOwnRowOnly) {
  Ready();
  ExpectCtl({"--board", "bench", "cards"}, "5  digital-output");
  const long before = ResidentKilobytesOf(neighbour->Pid());
  Tell("qelm/liar/status", "online", {"-r"});
  for (int i = 0; i < 5; ++i) Tell("qelm/liar/bus", std::string(10'000'000, '{'));
  Tell("qelm/liar/5/0", "maybe");
  ExpectCtl({"--board", "liar", "get", "5.0"}, "liar has no card at 5");
  ExpectCtl({"--board", "bench", "set", "5.0", "on"}, "5.0");
  if (!daemon.Instrumented()) {
    EXPECT_LT(ResidentKilobytesOf(neighbour->Pid()), before + 30'000);
  }
}
