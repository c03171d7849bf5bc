// The program as people and scripts call it, against a hub that says what a test tells it to.
#include <gtest/gtest.h>

#include "Ctl.h"
#include "FakeHub.h"

namespace {

constexpr char kLamp[] =
    R"({"id":"5.0","name":"Lamp","type":"switch","value":true,"raw":0,"known":true,)"
    R"("assumed":false,"pending":false,"since":"2026-11-21T12:00:00.000Z",)"
    R"("unit":null,"min":null,"max":null})";
constexpr char kKnob[] =
    R"({"id":"F.3","name":"Knob","type":"level","value":2.5,"raw":128,"known":true,)"
    R"("assumed":false,"pending":false,"since":null,"unit":"V","min":0,"max":5})";
constexpr char kDisplay[] =
    R"({"address":"E","kind":"lcd","name":"Display","state":"present","keep":true,)"
    R"("channels":[],"glass":{"rows":["Hello ","  World"],"light":false,)"
    R"("cursor":false,"blink":false}})";

std::string Cards() {
  return std::string(R"({"cards":[{"address":"5","kind":"digital-output","name":"Relays",)") +
         R"("state":"present","keep":true,"channels":[)" + kLamp +
         R"(,{"id":"5.1","name":"Door","value":false},{"id":"5.2","name":null,"value":null}],)" +
         R"("glass":null},)" + kDisplay +
         R"(,{"address":"F","kind":"analogue-input","name":null,"state":"silent","channels":[)" +
         kKnob + R"(,{"id":"F.4","name":"door","value":7}],"glass":null}]})";
}

class Commands : public testing::Test {
 protected:
  void SetUp() override { hub.Answer("GET /api/cards", Cards()); }

  Outcome Run(std::vector<std::string> arguments, const std::string& input = {}) {
    arguments.insert(arguments.begin(), {"--socket", hub.SocketPath()});
    return RunCtl(arguments, input, {{"TZ", "UTC"}, {"HOME", "/nonexistent"}});
  }

  // It is done, and prints exactly this.
  void Expect(const std::vector<std::string>& arguments, const std::string& out,
              Place place = Place::current()) {
    const Outcome outcome = Run(arguments);
    if (outcome.status != 0 || outcome.out != out)
      FAIL_AT(place) << "status " << outcome.status << ", printed:\n"
                     << outcome.out << outcome.err << "expected:\n"
                     << out;
  }

  // It asks the hub for this, with this body.
  void ExpectAsks(const std::vector<std::string>& arguments, const std::string& line,
                  const std::string& body, Place place = Place::current()) {
    hub.Answer(line, "{}");
    const Outcome outcome = Run(arguments);
    if (outcome.status != 0 || hub.LastBody(line) != body)
      FAIL_AT(place) << line << " came with " << hub.LastBody(line) << ", status " << outcome.status
                     << "\n"
                     << outcome.err;
  }

  // It ends with this status, and says so on standard error.
  void ExpectFails(const std::vector<std::string>& arguments, int status, const std::string& says,
                   Place place = Place::current()) {
    const Outcome outcome = Run(arguments);
    if (outcome.status != status || outcome.err.find(says) == std::string::npos)
      FAIL_AT(place) << "status " << outcome.status << ", says " << outcome.err;
  }

  FakeHub hub;
};

TEST_F(Commands, StatusSaysHowTheBusIs) {
  hub.Answer(
      "GET /api/bus",
      R"({"id":"3f9a21c0","name":"bench","seq":1,"daemon":{"state":"up","version":"1.20",)"
      R"("since":"2026-11-21T12:00:00.000Z","waiting_for":null},"adapter":{"state":"up",)"
      R"("device":"/dev/ttyUSB0","version":"v1.2"},"pace":50,"polling":true,"virtual":true})");
  Expect({"status"},
         "bus      bench\n"
         "         a virtual bus: no hardware moves\n"
         "daemon   up, version 1.20, since 2026-11-21 12:00:00\n"
         "adapter  up, v1.2 on /dev/ttyUSB0\n"
         "pace     50 %\n"
         "polling  on\n");
}

TEST_F(Commands, StatusNamesThePortThatIsHeld) {
  hub.Answer("GET /api/bus",
             R"({"name":"bench","daemon":{"state":"waiting","version":null,"since":null,)"
             R"("waiting_for":"io"},"adapter":{"state":"unknown","device":null,"version":null},)"
             R"("pace":null,"polling":null,"virtual":false})");
  Expect({"status"},
         "bus      bench\n"
         "daemon   waiting: another client holds the port io\n"
         "adapter  unknown\n"
         "pace     unknown\n"
         "polling  unknown\n");
}

TEST_F(Commands, StatusSaysWhyTheAdapterIsNotKnown) {
  hub.Answer("GET /api/bus",
             R"({"name":"bench","daemon":{"state":"up","version":"1.20",)"
             R"("since":"2026-11-21T12:00:00.000Z","waiting_for":null},"adapter":)"
             R"({"state":"unknown","device":null,"version":null},"pace":50,"polling":true,)"
             R"("virtual":false})");
  Expect({"status"},
         "bus      bench\n"
         "daemon   up, version 1.20, since 2026-11-21 12:00:00\n"
         "adapter  unknown: the daemon's log does not say, or the hub may not read it\n"
         "pace     50 %\n"
         "polling  on\n");
}

TEST_F(Commands, CardsAreListedWithTheirValuesInShort) {
  Expect({"cards"},
         "5  digital-output  Relays   present  10-\n"
         "E  lcd             Display  present  \"Hello \" ...\n"
         "F  analogue-input           silent   2.5 7\n");
}

TEST_F(Commands, GetPrintsTheValue) {
  hub.Answer("GET /api/channels/5.0", kLamp);
  hub.Answer("GET /api/channels/F.3", kKnob);
  Expect({"get", "5.0"}, "on\n");
  Expect({"get", "lamp"}, "on\n");
  Expect({"get", "f.3"}, "2.5 V\n");
}

TEST_F(Commands, GetSaysWhatIsNotSure) {
  hub.Answer("GET /api/channels/5.0", R"({"id":"5.0","value":true,"assumed":true})");
  hub.Answer("GET /api/channels/5.1", R"({"id":"5.1","value":false,"pending":true})");
  hub.Answer("GET /api/channels/5.2", R"({"id":"5.2","value":null,"assumed":true})");
  Expect({"get", "5.0"}, "on (assumed)\n");
  Expect({"get", "5.1"}, "off (pending)\n");
  Expect({"get", "5.2"}, "unknown\n");
}

TEST_F(Commands, SetSwitchesALampByAddressOrName) {
  hub.Answer("PUT /api/channels/5.0", kLamp);
  Expect({"set", "5.0", "on"}, "5.0  Lamp  on\n");
  EXPECT_EQ(hub.LastBody("PUT /api/channels/5.0"), R"({"value":true})");
  EXPECT_FALSE(hub.Got("GET /api/cards"));
  Expect({"set", "LAMP", "off"}, "5.0  Lamp  on\n");
  EXPECT_EQ(hub.LastBody("PUT /api/channels/5.0"), R"({"value":false})");
}

TEST_F(Commands, SetTakesNumbersPulsesAndRamps) {
  const std::string line = "PUT /api/channels/4.0";
  ExpectAsks({"set", "4.0", "-50"}, line, R"({"value":-50})");
  ExpectAsks({"set", "4.0", "on", "--pulse", "500ms"}, line, R"({"value":true,"pulse":500})");
  ExpectAsks({"set", "4.0", "200", "--ramp", "2s"}, line, R"({"value":200,"ramp":2000})");
}

TEST_F(Commands, SetRefusesWhatItDoesNotUnderstandBeforeItAsks) {
  ExpectFails({"set", "5.0", "maybe"}, 2, "write on, off or a number");
  ExpectFails({"set", "5.0", "on", "--pulse", "500"}, 2, "write 500ms, 2s or 1m");
  ExpectFails({"set", "door", "on"}, 2, "say 5.1 (Door) or F.4 (door)");
  ExpectFails({"set", "lmap", "on"}, 2, "is it \"Lamp\"?");
  ExpectFails({"set", "5.0"}, 2, "\"qelmctl set --help\" shows what is right");
  EXPECT_FALSE(hub.Got("PUT /api/channels/5.0"));
}

TEST_F(Commands, TextGoesToTheDisplayWhichIsShown) {
  hub.Answer("POST /api/cards/E/text", kDisplay);
  Expect({"text", "display", "1", "3", "Tail of the \"cat\""},
         "+-------+  light off\n"
         "|Hello  |\n"
         "|  World|\n"
         "+-------+\n");
  EXPECT_EQ(hub.LastBody("POST /api/cards/E/text"),
            R"({"row":1,"column":3,"text":"Tail of the \"cat\""})");
}

TEST_F(Commands, CardsAreControlled) {
  ExpectAsks({"clear", "E"}, "POST /api/cards/E/control", R"({"do":"clear"})");
  ExpectAsks({"light", "E", "on"}, "POST /api/cards/E/control", R"({"do":"light-on"})");
  ExpectAsks({"light", "e", "off"}, "POST /api/cards/E/control", R"({"do":"light-off"})");
  ExpectAsks({"ir", "9", "43", "4f"}, "POST /api/cards/9/infrared", R"({"bytes":"434F"})");
  ExpectAsks({"reboot", "relays"}, "POST /api/cards/5/reboot", "");
}

TEST_F(Commands, SettingsAreShownAsTheyMayBeGiven) {
  hub.Answer("GET /api/cards/0/settings", R"({"end_a":[16,16,null],"self_test":true,"mask":null})");
  Expect({"settings", "0"}, "end_a=16,16,?\nself_test=on\nmask=unknown\n");
}

TEST_F(Commands, SettingsAreChangedThenStored) {
  hub.Answer("POST /api/cards/F/settings/store", R"({"mask":32})");
  ExpectAsks({"settings", "F", "mask=0x20", "--store"}, "PUT /api/cards/F/settings",
             R"({"mask":32})");
  EXPECT_TRUE(hub.Got("POST /api/cards/F/settings/store"));
  ExpectAsks({"settings", "F", "--ask"}, "GET /api/cards/F/settings?ask=1", "");
}

TEST_F(Commands, TheBusIsControlled) {
  ExpectAsks({"pace", "50"}, "PUT /api/bus/pace", R"({"pace":50})");
  ExpectAsks({"polling", "off"}, "PUT /api/bus/polling", R"({"polling":false})");
  ExpectAsks({"polling", "F", "on"}, "PUT /api/cards/F/polling", R"({"polling":true})");
  hub.Answer("POST /api/bus/discover", R"({"cards":[{"address":"5","kind":"servo"}]})");
  Expect({"discover"}, "5  servo\n");
  hub.Answer("GET /api/bus", R"({"pace":50})");
  Expect({"pace"}, "50\n");
  ExpectFails({"pace", "101"}, 2, "a number from 1 to 100");
}

TEST_F(Commands, HistoryIsATableOrCsv) {
  const std::string line =
      "GET /api/history?channel=F.3&from=1795262400000&to=1795262520000&points=2";
  hub.Answer(line, R"({"channel":"F.3","unit":"V","step_ms":60000,"points":)"
                   R"([[1795262400000,2.5,2.4,2.6],[1795262460000,null,null,null]]})");
  const std::vector<std::string> asked{"history",          "knob",    "--since",
                                       "2026-11-21 12:00", "--until", "2026-11-21 12:02",
                                       "--points",         "2"};
  Expect(asked,
         "time                 mean/V  least  most\n"
         "2026-11-21 12:00:00  2.5     2.4    2.6\n"
         "2026-11-21 12:01:00\n");
  std::vector<std::string> csv = asked;
  csv.push_back("--csv");
  Expect(csv,
         "time,mean,min,max\n"
         "2026-11-21T12:00:00.000Z,2.5,2.4,2.6\n"
         "2026-11-21T12:01:00.000Z,,,\n");
}

TEST_F(Commands, AccountsAreKept) {
  hub.Answer("POST /api/accounts", "", 204);
  const Outcome added = Run({"account", "add", "operator", "admin"}, "correct horse\n");
  EXPECT_EQ(added.status, 0) << added.err;
  EXPECT_EQ(hub.LastBody("POST /api/accounts"),
            R"({"account":"operator","password":"correct horse","role":"admin"})");
  EXPECT_EQ(added.out + added.err, "");
  ExpectAsks({"account", "role", "operator", "view"}, "PUT /api/accounts/operator",
             R"({"role":"view"})");
  ExpectAsks({"account", "remove", "operator"}, "DELETE /api/accounts/operator", "");
  hub.Answer("GET /api/accounts", R"({"accounts":[{"account":"operator","role":"admin"}]})");
  Expect({"account", "list"}, "operator  admin\n");
  EXPECT_EQ(Run({"account", "password", "operator"}, "").status, 2);
  EXPECT_EQ(Run({"account", "password", "operator"}, "new one\n").status, 0);
  EXPECT_EQ(hub.LastBody("PUT /api/accounts/operator"), R"({"password":"new one"})");
}

TEST_F(Commands, TokensAreShownOnce) {
  hub.Answer("POST /api/tokens", R"({"name":"script","role":"use","token":"s3cret"})");
  Expect({"token", "add", "script"}, "s3cret\n");
  EXPECT_EQ(hub.LastBody("POST /api/tokens"), R"({"name":"script","role":"use"})");
  hub.Answer("GET /api/tokens", R"({"tokens":[{"name":"script","role":"use"}]})");
  Expect({"token", "list"}, "script  use\n");
  ExpectAsks({"token", "remove", "script"}, "DELETE /api/tokens/script", "");
}

TEST_F(Commands, BackupAndRestoreAreTheSameText) {
  const TempDir folder;
  hub.Answer("GET /api/backup", R"({"names":{"bus":"bench"}})");
  hub.Answer("PUT /api/backup", "", 204);
  Expect({"backup"}, "{\"names\":{\"bus\":\"bench\"}}\n");
  Expect({"backup", folder.Path("saved")}, "");
  Expect({"restore", folder.Path("saved")}, "");
  EXPECT_EQ(hub.LastBody("PUT /api/backup"), "{\"names\":{\"bus\":\"bench\"}}\n");
  ExpectFails({"restore", folder.Path("missing")}, 2, "cannot be read");
  ExpectFails({"backup", folder.Path("no/such/folder")}, 2, "cannot be written");
}

TEST_F(Commands, NamesAreShownGivenAndTakenAway) {
  hub.Answer("GET /api/names",
             R"({"bus":"bench","cards":{"5":"Relays"},"channels":{"5.0":"Lamp"}})");
  Expect({"names"}, "bus  bench\n5    Relays\n5.0  Lamp\n");
  ExpectAsks({"names", "5.0=Big lamp", "e=", "bus=shed"}, "PATCH /api/names",
             R"({"channels":{"5.0":"Big lamp"},"cards":{"E":null},"bus":"shed"})");
  ExpectFails({"names", "lamp=Door"}, 2, "write 5, 5.0 or 434F");
}

TEST_F(Commands, InfraredCodesHaveNames) {
  hub.Answer("GET /api/names", R"({"bus":"bench","infrared":{"434F":"Volume up"}})");
  Expect({"names"}, "bus   bench\n434F  Volume up\n");
  ExpectAsks({"names", "434f=Volume up", "0FF0="}, "PATCH /api/names",
             R"({"infrared":{"434F":"Volume up","0FF0":null}})");
}

TEST_F(Commands, ACodeIsSentByItsName) {
  hub.Answer("GET /api/cards", R"({"cards":[{"address":"5","codes":null},)"
                               R"({"address":"9","codes":{"434F":"Volume up","4350":"Mute"}}]})");
  ExpectAsks({"ir", "9", "mute"}, "POST /api/cards/9/infrared", R"({"bytes":"4350"})");
  ExpectAsks({"ir", "9", "volume", "up"}, "POST /api/cards/9/infrared", R"({"bytes":"434F"})");
  ExpectFails({"ir", "9", "off"}, 2, "no code is called \"off\"; \"qelmctl names\" lists them");
}

TEST_F(Commands, TheConsoleTakesALine) {
  hub.Answer("POST /api/console", R"({"lines":["CIA: DRIVER VERSION 1.20","\u001b[2J"]})");
  Expect({"console", "DRVVER"}, "CIA: DRIVER VERSION 1.20\n?[2J\n");
  EXPECT_EQ(hub.LastBody("POST /api/console"), R"({"line":"DRVVER"})");
}

TEST_F(Commands, TheConsoleTakesLinesFromStandardInput) {
  hub.Answer("POST /api/console", R"({"lines":["ok"]})");
  const Outcome outcome = Run({"console"}, "HELP\r\n\nDRVVER\nEXIT\nREBOOT:3\n");
  EXPECT_EQ(outcome.status, 0);
  EXPECT_EQ(outcome.out, "ok\nok\n");
  EXPECT_EQ(hub.LastBody("POST /api/console"), R"({"line":"DRVVER"})");
}

// Names and units may be another board's, and tokens another hub's.
TEST_F(Commands, NothingThatCameSteersTheTerminal) {
  hub.Answer("GET /api/channels/F.3", R"({"id":"F.3","value":1,"unit":"\u001b[2J"})");
  Expect({"get", "F.3"}, "1 ?[2J\n");
  hub.Answer("GET /api/cards/0/settings", R"({"\u001bc":"\u009bH","end_a":["\u0007"]})");
  Expect({"settings", "0"}, "?c=?H\nend_a=?\n");
  hub.Answer("POST /api/tokens", R"({"token":"\u001bc"})");
  Expect({"token", "add", "script"}, "?c\n");
  hub.Answer("GET /api/bus", R"({"pace":"\u001bc"})");
  Expect({"pace"}, "?c\n");
  hub.Answer("GET /api/journal", R"({"entries":[{"seq":1,"time":"\u001bc","text":"x"}]})");
  Expect({"journal"}, "?c    x\n");
  const std::string since = "2026-11-21 12:00";
  hub.Answer("GET /api/history?channel=F.3&from=1795262400000&to=1795262400000",
             R"({"points":[[1795262400000,"\u001bc"]]})");
  Expect({"history", "F.3", "--csv", "--since", since, "--until", since},
         "time,mean,min,max\n2026-11-21T12:00:00.000Z,?c\n");
}

TEST_F(Commands, JsonIsPrintedAsItCame) {
  hub.Answer("GET /api/channels/5.0", "{\"id\" : \"5.0\", \"new\":1.50}");
  Expect({"get", "5.0", "--json"}, "{\"id\" : \"5.0\", \"new\":1.50}\n");
  Expect({"--json", "get", "5.0"}, "{\"id\" : \"5.0\", \"new\":1.50}\n");
  const std::string problem = R"({"title":"does not fit","status":422,"detail":"too much"})";
  hub.Answer("PUT /api/channels/5.0", problem, 422);
  const Outcome refused = Run({"set", "5.0", "on", "--json"});
  EXPECT_EQ(refused.status, 1);
  EXPECT_EQ(refused.out, problem + "\n");
}

TEST_F(Commands, ARefusalSaysWhatIsWrongAndWhere) {
  hub.Answer("POST /api/cards/E/text",
             R"({"title":"does not fit","status":422,"detail":"a text of 41 characters; row 1 )"
             R"(from column 3 has room for 17","where":"text"})",
             422);
  ExpectFails({"text", "E", "1", "3", "much"}, 1,
              "qelmctl: a text of 41 characters; row 1 from column 3 has room for 17 (text)\n");
  hub.Answer("GET /api/bus", R"({"title":"the daemon is not there","status":503})", 503);
  ExpectFails({"status"}, 1, "the daemon is not there; \"qelmctl doctor\" says what is wrong");
}

TEST_F(Commands, ATokenGoesWithEveryRequestOverTheNetwork) {
  const TempDir folder;
  hub.Answer("GET /api/bus", R"({"pace":50})");
  const std::string file = folder.Write("token", "s3cret\n");
  EXPECT_EQ(RunCtl({"--url", hub.Url(), "--token-file", file, "pace"}).out, "50\n");
  EXPECT_NE(hub.Requests().back().headers.find("\r\nAuthorization: Bearer s3cret\r\n"),
            std::string::npos);
  EXPECT_EQ(RunCtl({"--url", hub.Url(), "pace"}, {}, {{"QELMCTL_TOKEN", "other"}}).out, "50\n");
  EXPECT_NE(hub.Requests().back().headers.find("\r\nAuthorization: Bearer other\r\n"),
            std::string::npos);
  EXPECT_NE(hub.Requests().back().headers.find("\r\nHost: 127.0.0.1:"), std::string::npos);
}

TEST_F(Commands, AHubThatIsNotThereIsStatusThree) {
  const Outcome missing = RunCtl({"--socket", "/nonexistent/hub.sock", "cards"});
  EXPECT_EQ(missing.status, 3);
  EXPECT_NE(missing.err.find("systemctl start qelm-hub"), std::string::npos) << missing.err;
  EXPECT_EQ(RunCtl({"--url", "http://127.0.0.1:1", "cards"}).status, 3);
}

TEST_F(Commands, WhoeverSpeaksNoJsonIsNoHub) {
  hub.Answer("GET /api/bus", "<html>router</html>");
  ExpectFails({"status"}, 3, "is that qelm-hub?");
}

TEST_F(Commands, AMisspeltCommandSaysWhatWasMeant) {
  ExpectFails({"crads"}, 2, "there is no command \"crads\"; is it \"cards\"?");
  ExpectFails({"cards", "--jsno"}, 2, "--jsno");
}

TEST_F(Commands, AnotherBoardIsAskedForByItsName) {
  const std::string stale = R"({"id":"5.0","name":"Lamp","value":true,)"
                            R"("stale_since":"2026-11-21T12:00:00.000Z"})";
  hub.Answer("GET /api/boards/shed/cards", Cards());
  hub.Answer("GET /api/boards/shed/channels/5.0", stale);
  Expect({"--board", "shed", "get", "lamp"}, "on (stale)\n");
  ExpectAsks({"--board", "shed", "set", "5.0", "on"}, "PUT /api/boards/shed/channels/5.0",
             R"({"value":true})");
  ExpectAsks({"text", "E", "0", "0", "Hi", "--board", "shed"}, "POST /api/boards/shed/cards/E/text",
             R"({"row":0,"column":0,"text":"Hi"})");
  ExpectAsks({"ir", "9", "434F", "--board", "shed"}, "POST /api/boards/shed/cards/9/infrared",
             R"({"bytes":"434F"})");
  EXPECT_FALSE(hub.Got("GET /api/cards"));
}

TEST_F(Commands, WhatIsForTheOwnBoardSaysSo) {
  ExpectFails({"--board", "shed", "reboot", "5"}, 2,
              "reboot is for the hub's own board; --board goes with cards, watch, get, set, text, "
              "light and ir");
}

TEST_F(Commands, ColoursGoToATerminalOnly) {
  hub.Answer("GET /api/channels/5.0", kLamp);
  const std::vector<std::string> command{"--socket", hub.SocketPath(), "get", "5.0"};
  EXPECT_EQ(RunCtl(command).out, "on\n");
  EXPECT_EQ(RunCtlOnTerminal(command, "").out, "\033[33mon\033[0m\r\n");
  EXPECT_EQ(RunCtlOnTerminal(command, "", {{"NO_COLOR", "1"}}).out, "on\r\n");
}

TEST_F(Commands, APasswordIsAskedForTwiceWithoutEcho) {
  hub.Answer("POST /api/accounts", "", 204);
  const std::vector<std::string> command{"--socket", hub.SocketPath(), "account", "add", "jo"};
  const Outcome added = RunCtlOnTerminal(command, "correct horse\ncorrect horse\n");
  EXPECT_EQ(added.status, 0);
  EXPECT_EQ(added.out, "New password for jo: \r\nAgain: \r\n");
  EXPECT_EQ(hub.LastBody("POST /api/accounts"),
            R"({"account":"jo","password":"correct horse","role":"use"})");
  EXPECT_EQ(RunCtlOnTerminal(command, "one\nother\n").status, 2);
}

TEST_F(Commands, TheConsoleHasAHistoryOnATerminal) {
  const TempDir home;
  hub.Answer("POST /api/console", R"({"lines":["CIA: DRIVER VERSION 1.20"]})");
  const Outcome session = RunCtlOnTerminal({"--socket", hub.SocketPath(), "console"},
                                           "DRVVER\nEXIT\n", {{"HOME", home.Path("")}});
  EXPECT_EQ(session.status, 0);
  EXPECT_NE(session.out.find("CIA: DRIVER VERSION 1.20"), std::string::npos) << session.out;
  EXPECT_NE(ReadFile(home.Path(".qelmctl_history")).find("DRVVER"), std::string::npos);
}

}  // namespace
