// Commands over a real broker: what reaches the cards, and what is answered to those that do not.
#include "BrokerSite.h"

class BrokerCommands : public BrokerSite {
 protected:
  void Ready() {
    StartBroker();
    StartAllWith();
    ExpectBroker(R"("state":"up")");
    Listen("qelm/bench/error");
  }

  // This is answered, and in it these words.
  void ExpectError(const std::string& topic, int status, const std::string& detail) {
    const std::string begin = R"(0 qelm/bench/error {"topic":"qelm/bench/)" + topic + "\"";
    const std::string end = "\"status\":" + std::to_string(status) + ",\"detail\":\"" + detail;
    EXPECT_TRUE(WaitUntil([&] {
      const std::string all = Heard();
      const size_t at = all.rfind(begin);
      return at != std::string::npos && all.find(end, at) != std::string::npos;
    })) << topic
        << ' ' << detail;
  }
};

TEST_F(BrokerCommands, EachKindReachesItsCard) {
  Ready();
  Tell("qelm/bench/5/0/set", "ON");
  ExpectHeld("5", "Lines FE FF");
  Tell("qelm/bench/5/0/set", "OFF");
  ExpectHeld("5", "Lines FF FF");
  Tell("qelm/bench/0/4/set", "64");
  ExpectHeld("0", "reached 80 80 80 80 40 80");
  Tell("qelm/bench/E/row/1/set", "   Tail of the cat");
  ExpectHeld("E", "Row1 \"   Tail of the cat  \"");
  Tell("qelm/bench/E/text/set", "one\ntwo");
  ExpectHeld("E", "Row0 \"one                 \"");
  ExpectHeld("E", "Row1 \"two                 \"");
  Tell("qelm/bench/E/light/set", "ON");
  ExpectHeld("E", "light on");
  Tell("qelm/bench/9/infrared/set", "434F");
  ExpectHeld("9", "sent 43 4F");
  EXPECT_EQ(Heard().find("error"), std::string::npos);
  const std::string journal = AskLocally("GET", "/api/journal");
  EXPECT_NE(journal.find(R"("text":"5.0: on","by":"broker")"), std::string::npos) << journal;
  EXPECT_TRUE(WaitUntil(
      [] { return Metric(R"(qelm_commands_total{door="broker",outcome="done"})") == 10; }));
}

TEST_F(BrokerCommands, WhatIsNotRightIsAnsweredAndDoesNothing) {
  Ready();
  Tell("qelm/bench/5/0/set", "{\"value\":tru");
  ExpectError("5/0/set", 400, "this is no JSON");
  Tell("qelm/bench/5/1/set", "\xFF\xFE");
  ExpectError("5/1/set", 400, "this is no JSON");
  Tell("qelm/bench/5/2/set", "ON\r\n");
  ExpectError("5/2/set", 422, "the payload holds a control character");
  Tell("qelm/bench/5/3/set", std::string("ON\0", 3));
  ExpectError("5/3/set", 422, "the payload holds a control character");
  Tell("qelm/bench/5/4/set", std::string(70'000, 'x'));
  ExpectError("5/4/set", 413, "a payload of 70000 bytes; a command has at most 65536");
  Tell("qelm/bench/5/5/set", "ON", {"-r"});
  ExpectError("5/5/set", 409, "a retained command");
  Tell("qelm/bench/5/6/set", "7");
  ExpectError("5/6/set", 422, "7; 5.6 takes true or false");
  Tell("qelm/bench/7/0/set", "ON");
  ExpectError("7/0/set", 404, "no card at 7");
  Tell("qelm/bench/3/0/set", "ON");
  ExpectError("3/0/set", 409, "card 3 is of the kind digital-input; it has no outputs to be set");
  Tell("qelm/bench/5/infrared/set", "434F");
  ExpectError("5/infrared/set", 409, "card 5 is of the kind digital-output; this is for ir");
  Tell("qelm/bench/5/text/set", "one");
  ExpectError("5/text/set", 409, "card 5 is of the kind digital-output; this is for lcd");
  Tell("qelm/bench/E/row/4/set", "one");
  ExpectError("E/row/4/set", 422, "row 4; the glass has rows 0 to 3");
  Tell("qelm/bench/5/7/set", "ON");  // the first that is right
  ExpectHeld("5", "Lines 7F FF");
  EXPECT_EQ(WritesTo("5"), std::vector<std::string>{"7F FF"});
  EXPECT_TRUE(WaitUntil(
      [] { return Metric(R"(qelm_commands_total{door="broker",outcome="done"})") == 1; }));
  EXPECT_EQ(Metric(R"(qelm_commands_total{door="broker",outcome="refused"})"), 12);
}

TEST_F(BrokerCommands, OneThatIsKeptOnTheBrokerIsNotDoneAtTheNextConnection) {
  StartBroker();
  Tell("qelm/bench/5/0/set", "ON", {"-r"});
  Listen("qelm/bench/error");
  StartAllWith();
  ExpectError("5/0/set", 409, "a retained command");
  Tell("qelm/bench/5/7/set", "ON");
  ExpectHeld("5", "Lines 7F FF");
}

TEST_F(BrokerCommands, WithoutADaemonEachIsAnswered) {
  Ready();
  daemon.Kill(9);
  daemon.WaitForEnd();
  EXPECT_TRUE(WaitUntil(
      [] { return AskLocally("GET", "/healthz").find(R"("daemon":"up")") == std::string::npos; }));
  Tell("qelm/bench/5/0/set", "ON");
  ExpectError("5/0/set", 503, "the daemon is not there; nothing was sent");
}
