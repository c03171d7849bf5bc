// Curves and the journal.
#include "api/ApiTest.h"

namespace hub::api {
namespace {

class RecordsTest : public ApiTest {};

TEST_F(RecordsTest, ACurveIsAnsweredInTheChannelsUnit) {
  model::Settings settings;
  settings.channels[{0xF, 3}].unit = "V";
  FileHas(settings);
  store.step_ms = 60'000;
  store.points = {{1'795'262'400'000, 2.5, 2.4, 2.6}, {1'795'262'460'000, 3, 3, 3}};
  ExpectResult("history.get",
               R"({"channel":"F.3","from":"2026-11-21T11:00:00Z","to":"1795262400000",
                   "points":"100"})",
               R"({"channel":"F.3", "unit":"V", "step_ms":60000,
                   "points":[[1795262400000,2.5,2.4,2.6],[1795262460000,3,3,3]]})");
  EXPECT_EQ(store.asked_history, "15.3 1795258800000 1795262400000 100");
}

TEST_F(RecordsTest, ACurveIsOfTheLastDayWhereNothingElseIsSaid) {
  ExpectResult("history.get", R"({"channel":"5.0"})",
               R"({"channel":"5.0", "unit":null, "step_ms":0, "points":[]})");
  EXPECT_EQ(store.asked_history, "5.0 1795176000000 1795262400000 500");
  Result("history.get", R"({"channel":"5.0","to":86400000,"from":0,"points":5000})");
  EXPECT_EQ(store.asked_history, "5.0 0 86400000 5000");
}

TEST_F(RecordsTest, ACardThatIsNotThereHasAPastAllTheSame) {
  Result("history.get", R"({"channel":"1.0"})");
  EXPECT_EQ(store.asked_history, "1.0 1795176000000 1795262400000 500");
}

TEST_F(RecordsTest, ASpanMustBeOne) {
  ExpectProblem("history.get", R"({"channel":"x"})", 404, "channel",
                "no channel x; they are as F.3");
  ExpectProblem("history.get", R"({"channel":"F.3","from":2000,"to":2000})", 422, "from",
                "from 1970-01-01T00:00:02.000Z is not before 1970-01-01T00:00:02.000Z");
  ExpectProblem("history.get", R"({"channel":"F.3","from":"yesterday"})", 422, "from",
                "from takes a time (RFC 3339 or milliseconds since 1970)");
  ExpectProblem("history.get", R"({"channel":"F.3","to":-1})", 422, "to",
                "to takes a time (RFC 3339 or milliseconds since 1970)");
  ExpectProblem("history.get", R"({"channel":"F.3","points":0})", 422, "points",
                "0; points takes 1 to 5000");
  ExpectProblem("history.get", R"({"channel":"F.3","points":"5001"})", 422, "points",
                "5001; points takes 1 to 5000");
  ExpectProblem("history.get", R"({"channel":"F.3","points":"many"})", 422, "points",
                "points takes a whole number");
  ExpectProblem("history.get", "{}", 422, "channel", "channel is missing: its id");
  EXPECT_EQ(store.asked_history, "");
}

TEST_F(RecordsTest, TheJournalIsReadBehindANumber) {
  store.entries = {{17, now, "adapter", "found on /dev/ttyUSB0", ""},
                   {18, now, "command", "5.0: on", "operator"}};
  store.lost = 3;
  ExpectResult("journal.get", R"({"after":"16","limit":"2"})", R"({"entries":[
    {"seq":17, "time":"2026-11-21T12:00:00.000Z", "kind":"adapter",
     "text":"found on /dev/ttyUSB0", "by":null},
    {"seq":18, "time":"2026-11-21T12:00:00.000Z", "kind":"command", "text":"5.0: on",
     "by":"operator"}], "lost":3})");
  EXPECT_EQ(store.asked_journal, "16, 2");
  Result("journal.get");
  EXPECT_EQ(store.asked_journal, "newest, 100");
  Result("journal.get", R"({"after":"0"})");
  EXPECT_EQ(store.asked_journal, "0, 100");
  Result("journal.get", R"({"after":"5","before":"17"})");
  EXPECT_EQ(store.asked_journal, "5 before 17, 100");
  ExpectProblem("journal.get", R"({"limit":1001})", 422, "limit", "1001; limit takes 1 to 1000");
  ExpectProblem("journal.get", R"({"after":"-1"})", 422, "after",
                "-1; after takes 0 to 1000000000000000");
}

TEST_F(RecordsTest, AStoreThatIsAskedTooMuchSaysSo) {
  store.is_busy = true;
  ExpectProblem("journal.get", "{}", 503, "", "too many questions to the store at once");
  ExpectProblem("history.get", R"({"channel":"F.3"})", 503, "",
                "too many questions to the store at once");
}

}  // namespace
}  // namespace hub::api
