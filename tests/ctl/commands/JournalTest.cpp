// The journal, and one that is followed. That goes on for ever, so the hub's refusal ends it here.
#include <gtest/gtest.h>

#include <algorithm>
#include <future>

#include "Ctl.h"
#include "FakeHub.h"
#include "kit/Wait.h"

namespace {

std::string Page(const char* number, const char* text) {
  return R"({"entries":[{"seq":)" + std::string(number) +
         R"(,"time":"2026-11-21T12:00:00.000Z","kind":"card","text":")" + text +
         R"(","by":null}],"lost":0})";
}

class Journal : public testing::Test {
 protected:
  Outcome Run(std::vector<std::string> arguments) {
    arguments.insert(arguments.begin(), {"--socket", hub.SocketPath(), "journal"});
    return RunCtl(arguments, {}, {{"TZ", "UTC"}});
  }

  void Refuse(const std::string& line) {
    hub.Answer(line, R"({"title":"no","status":403,"detail":"no"})", 403);
  }

  long Count(const std::string& line) {
    const std::vector<FakeHub::Request> requests = hub.Requests();
    return std::ranges::count(requests, line, &FakeHub::Request::line);
  }

  FakeHub hub;
};

TEST_F(Journal, SaysWhoDidWhat) {
  hub.Answer("GET /api/journal?limit=5",
             R"({"entries":[{"seq":17,"time":"2026-11-21T12:00:00.000Z","kind":"command",)"
             R"("text":"5.0 on","by":"operator"},{"seq":18,"time":"2026-11-21T12:00:01.000Z",)"
             R"("kind":"adapter","text":"gone","by":null}],"lost":3})");
  const Outcome outcome = Run({"--limit", "5"});
  EXPECT_EQ(outcome.status, 0);
  EXPECT_EQ(outcome.out,
            "2026-11-21 12:00:00  command  5.0 on (operator)\n"
            "2026-11-21 12:00:01  adapter  gone\n");
}

TEST_F(Journal, PrintsEachEntryOnce) {
  hub.Answer("GET /api/journal", Page("17", "first"));
  hub.Answer("GET /api/journal?after=17", Page("18", "second"));
  Refuse("GET /api/journal?after=18");
  const Outcome outcome = Run({"--follow"});
  EXPECT_EQ(outcome.out,
            "2026-11-21 12:00:00  card  first\n"
            "2026-11-21 12:00:00  card  second\n");
  EXPECT_EQ(outcome.status, 1);
}

TEST_F(Journal, SaysOnceThatTheHubIsGoneAndGoesOnWhenItIsBack) {
  hub.Answer("GET /api/journal", Page("17", "first"));
  hub.HangUpOn("GET /api/journal?after=17");
  auto following = std::async(std::launch::async, [this] { return Run({"--follow"}); });
  EXPECT_TRUE(WaitUntil([this] { return Count("GET /api/journal?after=17") >= 4; }));
  Refuse("GET /api/journal?after=18");
  hub.Answer("GET /api/journal?after=17", Page("18", "second"));
  const Outcome outcome = following.get();
  EXPECT_EQ(outcome.out,
            "2026-11-21 12:00:00  card  first\n"
            "2026-11-21 12:00:00  card  second\n");
  const size_t said = outcome.err.find("; trying again\n");
  EXPECT_NE(outcome.err.find("the connection ended"), std::string::npos) << outcome.err;
  EXPECT_NE(said, std::string::npos) << outcome.err;
  EXPECT_EQ(outcome.err.find("; trying again\n", said + 1), std::string::npos) << outcome.err;
}

TEST_F(Journal, OfAHubThatWasNeverThereIsStatusThree) {
  hub.HangUpOn("GET /api/journal");
  EXPECT_EQ(Run({"--follow"}).status, 3);
}

TEST_F(Journal, SaysHowManyEntriesAreGone) {
  hub.Answer("GET /api/journal", Page("17", "first"));
  hub.Answer("GET /api/journal?after=17",
             R"({"entries":[{"seq":40,"time":"2026-11-21T12:00:00.000Z","kind":"card",)"
             R"("text":"later","by":null}],"lost":22})");
  Refuse("GET /api/journal?after=40");
  EXPECT_EQ(Run({"--follow"}).out,
            "2026-11-21 12:00:00  card  first\n"
            "entries that are gone: 22\n"
            "2026-11-21 12:00:00  card  later\n");
}

}  // namespace
