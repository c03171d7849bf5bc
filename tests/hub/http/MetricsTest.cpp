// The text that a monitoring system reads.
#include <sys/resource.h>

#include <boost/asio/co_spawn.hpp>
#include <boost/asio/use_future.hpp>

#include "Stand.h"
#include "http/Metrics.h"
#include "kit/Wait.h"

namespace hub::http {
namespace {

class MetricsTest : public testing::Test {
 protected:
  bool Has(const std::string& line) { return text().find("\n" + line + "\n") != std::string::npos; }
  std::string text() { return stand.Connect().Get("/metrics").body; }

  Stand stand;
};

TEST_F(MetricsTest, EachNumberHasItsKindAndItsHelp) {
  const Reply reply = stand.Connect().Get("/metrics");
  EXPECT_EQ(reply.fields.at("content-type"), "text/plain; version=0.0.4; charset=utf-8");
  EXPECT_TRUE(reply.body.starts_with("# HELP qelm_daemon_up "));
  EXPECT_TRUE(Has("# TYPE qelm_link_commands_total counter"));
  EXPECT_TRUE(Has("qelm_link_commands_total 42"));
  EXPECT_TRUE(Has("qelm_store_troubled 1"));
  EXPECT_TRUE(Has("qelm_daemon_up 0"));
}

TEST_F(MetricsTest, RequestsAreCountedByTheirStatus) {
  stand.Connect().Get("/api/nothing");
  stand.Connect().Get("/api/nothing");
  stand.Connect().Get("/healthz");
  EXPECT_TRUE(Has("qelm_http_requests_total{status=\"404\"} 2"));
  EXPECT_TRUE(Has("qelm_http_requests_total{status=\"200\"} 2"));
}

TEST_F(MetricsTest, WebSocketsAreCounted) {
  WebClient client = stand.Subscribe();
  stand.Move(1);
  client.ReadText();
  EXPECT_TRUE(Has("qelm_clients{door=\"websocket\"} 1"));
  EXPECT_TRUE(Has("qelm_live_messages_total 1"));
  EXPECT_TRUE(Has("qelm_live_calls_total 1"));
}

TEST_F(MetricsTest, ClientsAreCountedByTheirDoorWhileTheyAreThere) {
  {
    WebClient local = stand.ConnectLocally();
    local.Get("/healthz");
    EXPECT_TRUE(Has("qelm_clients{door=\"local\"} 1"));
    // The one that asked before may not be seen to have left.
    EXPECT_TRUE(WaitUntil([this] { return Has("qelm_clients{door=\"http\"} 1"); }));
  }
  EXPECT_TRUE(WaitUntil([this] { return Has("qelm_clients{door=\"local\"} 0"); }));
}

TEST_F(MetricsTest, CardsAreCountedByTheirState) {
  EXPECT_TRUE(Has("qelm_cards{state=\"present\"} 2"));
  EXPECT_TRUE(Has("qelm_cards{state=\"silent\"} 0"));
}

TEST_F(MetricsTest, ACommandIsCountedAtTheDoorThroughWhichItCame) {
  stand.Connect().Write("PUT", "/api/things/lamp", R"({"value":7})");
  stand.Connect().Write("PUT", "/api/things/lamp", R"({"value":"x"})");
  stand.ConnectLocally().Write("PUT", "/api/things/lamp", R"({"value":7})");
  WebClient client = stand.Subscribe();
  client.SendText(
      R"({"jsonrpc":"2.0","id":2,"method":"thing.put","params":{"name":"lamp","value":7}})");
  client.ReadText();
  EXPECT_TRUE(Has("qelm_commands_total{door=\"http\",outcome=\"done\"} 1"));
  EXPECT_TRUE(Has("qelm_commands_total{door=\"http\",outcome=\"refused\"} 1"));
  EXPECT_TRUE(Has("qelm_commands_total{door=\"local\",outcome=\"done\"} 1"));
  EXPECT_TRUE(Has("qelm_commands_total{door=\"websocket\",outcome=\"done\"} 1"));
}

TEST_F(MetricsTest, OutcomesAndReceiptTimesAreCounted) {
  using std::chrono::milliseconds;
  stand.Run([this] {
    const api::Problem too_fast = api::RetryLater(429, "x", 1);
    stand.house.traffic.Count(api::Door::kText, nullptr, milliseconds(3));
    stand.house.traffic.Count(api::Door::kText, nullptr, milliseconds(300));
    stand.house.traffic.Count(api::Door::kWebSocket, &too_fast, milliseconds(0));
  });
  EXPECT_TRUE(Has("qelm_commands_total{door=\"text\",outcome=\"done\"} 2"));
  EXPECT_TRUE(Has("qelm_commands_total{door=\"websocket\",outcome=\"too_fast\"} 1"));
  EXPECT_TRUE(Has("qelm_commands_total{door=\"http\",outcome=\"done\"} 0"));
  EXPECT_TRUE(Has("qelm_receipt_seconds_bucket{le=\"0.0025\"} 0"));
  EXPECT_TRUE(Has("qelm_receipt_seconds_bucket{le=\"0.005\"} 1"));
  EXPECT_TRUE(Has("qelm_receipt_seconds_bucket{le=\"0.5\"} 2"));
  EXPECT_TRUE(Has("qelm_receipt_seconds_bucket{le=\"+Inf\"} 2"));
  EXPECT_TRUE(Has("qelm_receipt_seconds_sum 0.303"));
  EXPECT_TRUE(Has("qelm_receipt_seconds_count 2"));
}

// All numbers differ, so that none stands for another.
TEST_F(MetricsTest, EachNumberIsOfWhatItsNameSays) {
  stand.AddAccount();
  for (int i = 0; i < 8; ++i)
    boost::asio::co_spawn(stand.context, stand.access.LogIn("operator", "wrong", "10.0.0.1"),
                          boost::asio::use_future)
        .get();
  const std::string text = stand.Run([this] {
    stand.house.traffic.broker = {.sent = 71, .heard = 72, .dropped = 73, .merged = 74};
    stand.bus.SetPace(80);
    return MetricsText(stand.house, {.requests = {{431, 67}},
                                     .turned_away = 61,
                                     .calls = 62,
                                     .messages = 63,
                                     .merged = 64,
                                     .lost = 65,
                                     .cut = 66});
  });
  for (const char* line :
       {"qelm_bus_pace_percent 80",        "qelm_link_commands_total 42",
        "qelm_link_merged_total 43",       "qelm_link_refused_total 44",
        "qelm_link_reports_total 45",      "qelm_link_sessions_total 46",
        "qelm_link_restored_total 47",     "qelm_store_written_bytes_total 51",
        "qelm_store_waiting 52",           "qelm_store_dropped_total 53",
        "qelm_store_documents_waiting 54", "qelm_http_turned_away_total 61",
        "qelm_live_calls_total 62",        "qelm_live_messages_total 63",
        "qelm_live_merged_total 64",       "qelm_live_lost_total 65",
        "qelm_live_cut_total 66",          "qelm_http_requests_total{status=\"431\"} 67",
        "qelm_broker_sent_total 71",       "qelm_broker_heard_total 72",
        "qelm_broker_dropped_total 73",    "qelm_broker_merged_total 74",
        "qelm_logins_wrong_total 5",       "qelm_logins_throttled_total 3"})
    EXPECT_NE(text.find("\n" + std::string(line) + "\n"), std::string::npos) << line;
}

TEST_F(MetricsTest, OneOfTheStatesIsThere) {
  struct Case {
    model::DaemonState daemon;
    model::AdapterState adapter;
    model::BrokerState broker;
    std::string numbers;  // daemon up and waiting, adapter up, broker up
  };
  const Case cases[] = {
      {model::DaemonState::kAbsent, model::AdapterState::kUp, model::BrokerState::kRefused, "0010"},
      {model::DaemonState::kWaiting, model::AdapterState::kDown, model::BrokerState::kConnecting,
       "0100"},
      {model::DaemonState::kUp, model::AdapterState::kUnknown, model::BrokerState::kUp, "1001"}};
  for (const Case& state : cases) {
    stand.Run([&] {
      stand.bus.SetDaemon({state.daemon, {}, {}, {}});
      stand.bus.SetAdapter({state.adapter, {}, {}});
      stand.bus.SetBroker(model::Broker{state.broker, "", ""});
      stand.bus.Publish();
    });
    size_t at = 0;
    for (const char* name :
         {"qelm_daemon_up", "qelm_daemon_waiting", "qelm_adapter_up", "qelm_broker_up"})
      EXPECT_TRUE(Has(std::string(name) + ' ' + state.numbers[at++])) << name << state.numbers;
  }
}

TEST_F(MetricsTest, OtherPartsOfTheHubAddTheirOwn) {
  stand.Run([&] { stand.server->Collect([] { return std::string("qelm_other 7\n"); }); });
  EXPECT_TRUE(Has("qelm_other 7"));
}

TEST_F(MetricsTest, AreThereWithoutADescriptorToo) {
  WebClient client = stand.Connect();
  client.Get("/healthz");
  rlimit before{};
  ASSERT_EQ(getrlimit(RLIMIT_NOFILE, &before), 0);
  const rlimit none{3, before.rlim_max};
  ASSERT_EQ(setrlimit(RLIMIT_NOFILE, &none), 0);
  const Reply reply = client.Get("/metrics");
  setrlimit(RLIMIT_NOFILE, &before);
  EXPECT_EQ(reply.status, 200);
  EXPECT_NE(reply.body.find("\nprocess_max_fds 3\n"), std::string::npos);
}

}  // namespace
}  // namespace hub::http
