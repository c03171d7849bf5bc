// The text that a monitoring system reads.
#include <sys/resource.h>

#include "Stand.h"
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
