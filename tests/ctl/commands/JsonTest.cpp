// Every command with --json: what the hub says, as it came, and nothing beside it.
#include <gtest/gtest.h>

#include <algorithm>
#include <boost/json/parse.hpp>

#include "Ctl.h"
#include "FakeHub.h"
#include "base/Text.h"
#include "commands/Command.h"

namespace {

struct Row {
  const char* command;
  std::vector<std::string> arguments;
  const char* asks;
  const char* answer;
  const char* input = "";
};

const std::vector<Row>& Rows() {
  static const std::vector<Row>& rows = *new std::vector<Row>{
      {"status", {}, "GET /api/bus", R"({"name":"bench"})"},
      {"cards", {}, "GET /api/cards", R"({"cards":[]})"},
      {"get", {"5.0"}, "GET /api/channels/5.0", R"({"id":"5.0"})"},
      {"set", {"5.0", "on"}, "PUT /api/channels/5.0", R"({"id":"5.0"})"},
      {"text", {"E", "1", "3", "Hi"}, "POST /api/cards/E/text", R"({"address":"E"})"},
      {"clear", {"E"}, "POST /api/cards/E/control", R"({"address":"E"})"},
      {"light", {"E", "on"}, "POST /api/cards/E/control", R"({"address":"E"})"},
      {"ir", {"9", "434F"}, "POST /api/cards/9/infrared", R"({"id":"9.0"})"},
      {"settings", {"F"}, "GET /api/cards/F/settings", R"({"mask":32})"},
      {"settings", {"F", "mask=1"}, "PUT /api/cards/F/settings", R"({"mask":1})"},
      {"settings", {"F", "--store"}, "POST /api/cards/F/settings/store", R"({"mask":1})"},
      {"pace", {}, "GET /api/bus", R"({"pace":50})"},
      {"pace", {"60"}, "PUT /api/bus/pace", R"({"pace":60})"},
      {"polling", {"off"}, "PUT /api/bus/polling", R"({"polling":false})"},
      {"polling", {"F", "on"}, "PUT /api/cards/F/polling", R"({"address":"F"})"},
      {"discover", {}, "POST /api/bus/discover", R"({"cards":[]})"},
      {"reboot", {"5"}, "POST /api/cards/5/reboot", R"({"address":"5"})"},
      {"console", {"HELP"}, "POST /api/console", R"({"lines":["help"]})"},
      {"console", {}, "POST /api/console", R"({"lines":["help"]})", "HELP\n"},
      {"history",
       {"F.3", "--since", "2026-11-21 12:00", "--until", "2026-11-21 12:02"},
       "GET /api/history?channel=F.3&from=1795262400000&to=1795262520000",
       R"({"channel":"F.3","points":[]})"},
      {"journal", {}, "GET /api/journal", R"({"entries":[],"lost":0})"},
      {"account add", {"jo"}, "POST /api/accounts", R"({"accounts":[]})", "correct horse\n"},
      {"account list", {}, "GET /api/accounts", R"({"accounts":[]})"},
      {"account remove", {"jo"}, "DELETE /api/accounts/jo", R"({"accounts":[]})"},
      {"account password", {"jo"}, "PUT /api/accounts/jo", R"({"accounts":[]})", "horse\n"},
      {"account role", {"jo", "view"}, "PUT /api/accounts/jo", R"({"accounts":[]})"},
      {"token add", {"script"}, "POST /api/tokens", R"({"token":"s3cret"})"},
      {"token list", {}, "GET /api/tokens", R"({"tokens":[]})"},
      {"token remove", {"script"}, "DELETE /api/tokens/script", R"({"tokens":[]})"},
      {"backup", {}, "GET /api/backup", R"({"names":{}})"},
      {"restore", {"-"}, "PUT /api/backup", R"({"names":{}})", R"({"names":{}})"},
      {"names", {}, "GET /api/names", R"({"bus":"bench"})"},
      {"names", {"5=Relays"}, "PATCH /api/names", R"({"cards":{"5":"Relays"}})"},
  };
  return rows;
}

class Json : public testing::Test {
 protected:
  Outcome Run(const std::string& command, const std::vector<std::string>& arguments,
              const std::string& input = {}) {
    std::vector<std::string> words{"--json", "--socket", hub.SocketPath()};
    for (const std::string& word : ctl::Split(command, ' ')) words.push_back(word);
    words.insert(words.end(), arguments.begin(), arguments.end());
    return RunCtl(words, input, {{"TZ", "UTC"}, {"HOME", "/nonexistent"}});
  }

  FakeHub hub;
};

TEST_F(Json, IsWhatTheHubSays) {
  for (const Row& row : Rows()) {
    hub.Answer(row.asks, row.answer);
    const Outcome outcome = Run(row.command, row.arguments, row.input);
    EXPECT_EQ(outcome.status, 0) << row.command;
    EXPECT_EQ(outcome.out, std::string(row.answer) + "\n") << row.command;
    EXPECT_EQ(outcome.err, "") << row.command;
    boost::system::error_code error;
    boost::json::parse(outcome.out, error);
    EXPECT_FALSE(error) << row.command;
  }
}

TEST_F(Json, IsARefusalToo) {
  const std::string problem = R"({"title":"role","status":403,"detail":"no","where":null})";
  for (const Row& row : Rows()) {
    hub.Answer(row.asks, problem, 403);
    const Outcome outcome = Run(row.command, row.arguments, row.input);
    EXPECT_EQ(outcome.status, 1) << row.command;
    EXPECT_EQ(outcome.out, problem + "\n") << row.command;
    EXPECT_EQ(outcome.err,
              "qelmctl: no; this wants a role that may do more; an admin can give one\n")
        << row.command;
  }
}

TEST_F(Json, IsNothingWhereThereIsNoAnswer) {
  for (const Row& row : Rows()) {
    hub.Answer(row.asks, "", 204);
    const Outcome outcome = Run(row.command, row.arguments, row.input);
    EXPECT_EQ(outcome.status, 0) << row.command;
    EXPECT_EQ(outcome.out, "") << row.command;
  }
}

// It needs no hub, and looks at nothing of this machine's here.
TEST_F(Json, OfDoctorIsItsReport) {
  const Outcome outcome =
      Run("doctor", {"--config-file", "/nonexistent/xml", "--pid-file", "/nonexistent/pid"});
  EXPECT_EQ(outcome.status, 1);
  boost::system::error_code error;
  const auto report = boost::json::parse(outcome.out, error);
  ASSERT_FALSE(error) << outcome.out;
  EXPECT_EQ(report.at("well"), false);
  EXPECT_FALSE(report.at("findings").as_array().empty());
}

// What prints one document after the other has tests of its own.
TEST_F(Json, NoCommandIsLeftOut) {
  for (const ctl::Command& command : ctl::Commands()) {
    if (command.name == "doctor" || command.name == "watch") continue;
    EXPECT_TRUE(std::ranges::any_of(Rows(), [&command](const Row& row) {
      return row.command == command.name;
    })) << command.name;
  }
}

TEST_F(Json, OfAJournalThatIsFollowedIsAPageALine) {
  const std::string first = R"({"entries":[{"seq":17,"text":"first"}],"lost":0})";
  const std::string second = R"({"entries":[{"seq":18,"text":"second"}],"lost":0})";
  const std::string problem = R"({"title":"role","status":403,"detail":"no","where":null})";
  hub.Answer("GET /api/journal", first);
  hub.Answer("GET /api/journal?after=17", second);
  hub.Answer("GET /api/journal?after=18", problem, 403);
  const Outcome outcome = Run("journal", {"--follow"});
  EXPECT_EQ(outcome.out, first + "\n" + second + "\n" + problem + "\n");
}

}  // namespace
