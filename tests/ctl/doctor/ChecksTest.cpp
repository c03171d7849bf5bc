// What cannot be made for real beside other tests: a clock that is wrong, rights of other users,
// what a newer hub says.
#include "doctor/Checks.h"

#include <gtest/gtest.h>

#include <boost/json/parse.hpp>

#include "doctor/Report.h"
#include "doctor/Sockets.h"

namespace ctl::doctor {
namespace {

using namespace std::chrono_literals;

TEST(Checks, AClockBefore2024IsWrong) {
  Facts facts;
  facts.now = std::chrono::sys_days(2023y / 12 / 31) + 12h;
  EXPECT_EQ(CheckClock(facts).front().verdict, Verdict::kWrong);
  facts.now = std::chrono::sys_days(2024y / 1 / 1) + 12h;
  EXPECT_EQ(CheckClock(facts).front().verdict, Verdict::kWell);
}

TEST(Checks, AConfigurationThatIsHiddenFromWhoAsksIsNotWrong) {
  Facts facts;
  facts.config_error = "Permission denied";
  EXPECT_EQ(CheckConfiguration(facts).front().verdict, Verdict::kUnseen);
  facts.config_error = "No such file or directory";
  EXPECT_EQ(CheckConfiguration(facts).front().verdict, Verdict::kWrong);
}

struct stat File(mode_t mode, uid_t user, gid_t group) {
  struct stat file {};
  file.st_mode = mode;
  file.st_uid = user;
  file.st_gid = group;
  return file;
}

TEST(Checks, RightsGoByOwnerThenGroupThenOthers) {
  const Who qelm{.name = "qelm", .user = 100, .groups = {100, 20}};
  EXPECT_TRUE(Permits(File(0600, 100, 0), qelm, 6));
  EXPECT_TRUE(Permits(File(0660, 0, 20), qelm, 6));
  EXPECT_FALSE(Permits(File(0660, 0, 21), qelm, 6));
  EXPECT_TRUE(Permits(File(0666, 0, 21), qelm, 6));
  EXPECT_FALSE(Permits(File(0066, 100, 20), qelm, 6));
  EXPECT_TRUE(Permits(File(0000, 1, 1), {.name = "root", .user = 0, .groups = {}}, 6));
}

TEST(Checks, ADeviceThatTheDaemonMayNotOpenNamesUserAndGroup) {
  Facts facts;
  facts.daemon_user.name = "qelm";
  facts.devices = {{.path = "/dev/ttyUSB0", .may_open = false, .group = "dialout", .others = {}}};
  const Finding finding = CheckAdapter(facts).front();
  EXPECT_EQ(finding.verdict, Verdict::kWrong);
  EXPECT_EQ(finding.advice, "adduser qelm dialout; systemctl restart qelm");
}

TEST(Checks, ADeviceBeyondNinetyNineIsNotFound) {
  Facts facts;
  facts.devices = {{.path = "/dev/ttyUSB100", .may_open = true, .group = {}, .others = {}}};
  EXPECT_EQ(CheckAdapter(facts).front().verdict, Verdict::kWrong);
  facts.devices[0].path = "/dev/ttyUSB99";
  EXPECT_EQ(CheckAdapter(facts).front().verdict, Verdict::kWell);
}

Verdict BrokerVerdict(const char* bus) {
  Facts facts;
  facts.hub.bus = boost::json::parse(bus);
  return CheckBroker(facts).front().verdict;
}

TEST(Checks, TheBrokerIsJudgedWhereTheHubTells) {
  EXPECT_EQ(BrokerVerdict("{}"), Verdict::kWell);
  EXPECT_EQ(BrokerVerdict(R"({"broker":null})"), Verdict::kWell);
  EXPECT_EQ(BrokerVerdict(R"({"broker":{"state":"up"}})"), Verdict::kWell);
  EXPECT_EQ(BrokerVerdict(R"({"broker":{"state":"connecting"}})"), Verdict::kWrong);
}

TEST(Checks, ASilentCardIsNotedAndNoneAtAllIsWrong) {
  Facts facts;
  facts.hub.cards = boost::json::parse(
      R"({"cards":[{"address":"5","name":"Relays","state":"present"},
                   {"address":"8","name":null,"state":"silent"}]})");
  const Findings findings = CheckCards(facts);
  ASSERT_EQ(findings.size(), 2U);
  EXPECT_EQ(findings[0].found, "1 answer");
  EXPECT_EQ(findings[1].found, "card 8 does not answer");
  facts.hub.cards = boost::json::parse(R"({"cards":[]})");
  EXPECT_EQ(CheckCards(facts).front().verdict, Verdict::kWrong);
}

// A hub that runs has the ports of its settings.
TEST(Checks, AnotherProgramOnThePagesPortIsWrongOnlyWithoutAHub) {
  Facts facts;
  facts.hub.page_is_open = true;
  facts.hub.page_owner = "nc (process 77)";
  EXPECT_EQ(CheckPage(facts).front().verdict, Verdict::kWrong);
  facts.hub.processes = {{.pid = 78, .name = "qelm-hub"}};
  EXPECT_EQ(CheckPage(facts).front().verdict, Verdict::kNote);
}

TEST(Sockets, AreReadAsTheKernelListsThem) {
  const std::vector<Socket> sockets = ReadSockets(
      "  sl  local_address rem_address   st tx_queue rx_queue tr tm->when retrnsmt   uid  timeout "
      "inode\n"
      "   0: 00000000:1392 00000000:0000 0A 00000000:00000000 00:00000000 00000000   100        0 "
      "12345 1 0000000000000000 100 0 0 10 0\n"
      "   1: 0100007F:1392 0700000A:D431 01 00000000:00000000 00:00000000 00000000   100        0 "
      "678 1 0000000000000000 20 4 30 10 -1\n");
  ASSERT_EQ(sockets.size(), 2U);
  EXPECT_TRUE(sockets[0].listens);
  EXPECT_EQ(sockets[0].port, 5010);
  EXPECT_EQ(sockets[0].inode, 12345U);
  EXPECT_TRUE(sockets[1].is_open);
  EXPECT_EQ(sockets[1].address, "127.0.0.1");
  EXPECT_EQ(sockets[1].peer_address, "10.0.0.7");
  EXPECT_EQ(sockets[1].peer_port, 54321);
}

TEST(Report, SaysWhatToDoBelowWhatIsWrong) {
  const Report report{{"clock", {{Verdict::kWell, "2026", ""}}},
                      {"hub", {{Verdict::kWrong, "gone", "start it"}}}};
  EXPECT_FALSE(IsWell(report));
  EXPECT_EQ(ReportText(report, Paint(false)),
            "well   clock         2026\n"
            "WRONG  hub           gone\n"
            "                     -> start it\n"
            "Mend what is WRONG from the top down.\n");
  EXPECT_EQ(ReportJson(report),
            R"({"well":false,"findings":[)"
            R"({"check":"clock","verdict":"well","found":"2026","advice":null},)"
            R"({"check":"hub","verdict":"wrong","found":"gone","advice":"start it"}]})");
}

TEST(Report, NotesAndWhatCannotBeSeenAreNotWrong) {
  EXPECT_TRUE(IsWell({{"page", {{Verdict::kNote, "", ""}, {Verdict::kUnseen, "", ""}}}}));
}

}  // namespace
}  // namespace ctl::doctor
