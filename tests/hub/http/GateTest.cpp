// Who is let in, as what: over sockets, with headers written by hand.
#include "Stand.h"

namespace hub::http {
namespace {

using access::Role;

constexpr char kWho[] = "/api/session";
constexpr char kAdminOnLoopback[] = R"({"account":"","role":"admin","address":"127.0.0.1"})";

class GateTest : public testing::Test {
 protected:
  // With this value for Host, and these fields.
  Reply Who(const std::string& host, const std::string& fields = "") {
    return stand.Connect().Ask("GET /api/session HTTP/1.1\r\nHost: " + host + "\r\n" + fields +
                               "\r\n");
  }

  Reply Who(WebClient client, const std::string& fields = "") { return client.Get(kWho, fields); }

  int Live(const std::string& fields) {
    return stand.Connect().Upgrade("/api/live", fields).status;
  }

  int tickets = 0;
  Stand stand{[](ServerOptions& options) { options.hosts = {"bench.example"}; }};
};

TEST_F(GateTest, LoopbackIsAdminUntilThereIsAnAccount) {
  EXPECT_EQ(Who(stand.Connect()).body, kAdminOnLoopback);
  stand.AddAccount();
  EXPECT_EQ(Who(stand.Connect()).body, R"({"account":"","role":"none","address":"127.0.0.1"})");
  EXPECT_EQ(stand.Connect().Get("/api/things/lamp").status, 401);
  EXPECT_EQ(stand.Connect().Get("/metrics").status, 401);
  EXPECT_EQ(stand.Connect().Get("/api/openapi.json").status, 401);
  EXPECT_EQ(stand.Connect().Get("/healthz").status, 200);
  EXPECT_EQ(Live(""), 401);
}

TEST_F(GateTest, TheUnixSocketMayDoAllWithAccountsToo) {
  stand.AddAccount();
  EXPECT_EQ(Who(stand.ConnectLocally()).body, R"({"account":"","role":"admin","address":""})");
  EXPECT_EQ(stand.ConnectLocally().Upgrade().status, 101);
}

TEST_F(GateTest, ACookieBringsItsAccount) {
  const std::string cookie = "Cookie: theme=dark; " + stand.AddAccount() + "\r\n";
  EXPECT_EQ(Who(stand.Connect(), cookie).body,
            R"({"account":"operator","role":"admin","address":"127.0.0.1"})");
}

TEST_F(GateTest, ACutOrEmptyCookieBringsNobody) {
  std::string cookie = stand.AddAccount();
  const std::string nobody = R"({"account":"","role":"none","address":"127.0.0.1"})";
  EXPECT_EQ(Who(stand.Connect(), "Cookie: qelm_session=\r\n").body, nobody);
  cookie.pop_back();
  EXPECT_EQ(Who(stand.Connect(), "Cookie: " + cookie + "\r\n").body, nobody);
}

TEST_F(GateTest, ATokenBringsItsRole) {
  const std::string token = stand.AddToken("scripts", Role::kView);
  const std::string bearer = "Authorization: Bearer " + token + "\r\n";
  EXPECT_EQ(Who(stand.Connect(), bearer).body,
            R"({"account":"token:scripts","role":"view","address":"127.0.0.1"})");
  EXPECT_EQ(stand.Connect().Write("PUT", "/api/things/lamp", R"({"value":1})", bearer).status, 403);
  EXPECT_EQ(stand.Connect().Get("/metrics", bearer).status, 200);
}

TEST_F(GateTest, EmptyAndCutTokensAreRefusedOnLoopbackToo) {
  std::string token = stand.AddToken("scripts", Role::kView);
  token.pop_back();
  for (const std::string value : {"", "Bearer", "Bearer ", "Basic b3BlcmF0b3I6eA=="})
    EXPECT_EQ(Who(stand.Connect(), "Authorization: " + value + "\r\n").status, 401) << value;
  const Reply reply = Who(stand.Connect(), "Authorization: Bearer " + token + "\r\n");
  EXPECT_EQ(reply.status, 401);
  EXPECT_EQ(reply.fields.at("www-authenticate"), "Bearer");
}

TEST_F(GateTest, DnsRebindingFindsNoHubOnLoopbackEither) {
  for (const std::string host : {"evil.example", "localhost.evil.example", "", "0x7f000001",
                                 "127.0.0.1.evil.example", "localhost@evil.example"})
    EXPECT_EQ(Who(host).status, 403) << host;
  for (const std::string host : {"localhost", "LOCALHOST:5080", "127.0.0.1:5080", "[::1]:5080",
                                 "192.168.1.20", "bench.example", "Bench.Example:80"})
    EXPECT_EQ(Who(host).status, 200) << host;
}

TEST_F(GateTest, ARequestWithoutHostOrWithTwoIsRefused) {
  EXPECT_EQ(stand.Connect().Ask("GET /healthz HTTP/1.1\r\n\r\n").status, 403);
  EXPECT_EQ(Who("localhost", "Host: evil.example\r\n").status, 400);
}

TEST_F(GateTest, OnlyThePageOfThisHubMayAsk) {
  EXPECT_EQ(Who("localhost:5080", "Origin: http://localhost:5080\r\n").status, 200);
  for (const std::string origin :
       {"http://evil.example", "null", "https://localhost:5080", "http://localhost",
        "http://localhost:50801", "http://localhost:5080.evil.example", "http://LOCALHOST:5080",
        "http://localhost:5080/", "http://evil.example#http://localhost:5080", ""})
    EXPECT_EQ(Who("localhost:5080", "Origin: " + origin + "\r\n").status, 403) << origin;
  EXPECT_EQ(Who("localhost", "Origin: http://localhost\r\nOrigin: http://evil.example\r\n").status,
            400);
}

TEST_F(GateTest, AForeignPageOpensNoWebSocket) {
  EXPECT_EQ(Live("Origin: http://localhost\r\n"), 101);
  for (const std::string origin :
       {"http://evil.example", "null", "http://localhost.evil.example", "https://localhost"})
    EXPECT_EQ(Live("Origin: " + origin + "\r\n"), 403) << origin;
}

TEST_F(GateTest, AWebSocketWithACookieNeedsAnOrigin) {
  const std::string cookie = "Cookie: " + stand.AddAccount() + "\r\n";
  EXPECT_EQ(Live(cookie), 403);
  EXPECT_EQ(Live(cookie + "Origin: http://evil.example\r\n"), 403);
  EXPECT_EQ(Live(cookie + "Origin: http://localhost\r\n"), 101);
}

TEST_F(GateTest, AForgedForwardedForIsPassedOver) {
  EXPECT_EQ(Who(stand.Connect(), "X-Forwarded-For: 10.1.2.3\r\n").body, kAdminOnLoopback);
  stand.AddAccount();
  EXPECT_EQ(Who(stand.Connect(), "X-Forwarded-For: 127.0.0.1\r\n").body,
            R"({"account":"","role":"none","address":"127.0.0.1"})");
}

TEST_F(GateTest, ATicketOpensOneWebSocket) {
  stand.AddAccount();
  const auto ticket = [&] {
    return stand.Run([&] {
      return stand.access.MakeTicket(
          *stand.access.ByToken(std::get<std::string>(stand.access.AddToken(
                                    "t" + std::to_string(++tickets), Role::kView)),
                                "127.0.0.1"));
    });
  };
  const std::string once = "/api/live?ticket=" + ticket();
  EXPECT_EQ(stand.Connect().Upgrade(once).status, 101);
  EXPECT_EQ(stand.Connect().Upgrade(once).status, 401);
  EXPECT_EQ(stand.Connect().Upgrade("/api/live?ticket=no").status, 401);
  EXPECT_EQ(stand.Connect().Get("/api/things/lamp?ticket=" + ticket()).status, 401);
}

TEST_F(GateTest, ALiveConnectionThatIsNoWebSocketIsToldSo) {
  const Reply reply = stand.Connect().Get("/api/live");
  EXPECT_EQ(reply.status, 426);
  EXPECT_EQ(reply.fields.at("upgrade"), "websocket");
}

TEST(GateBehindAProxyTest, TheAddressIsTheOneThatTheProxyHasSeen) {
  Stand stand([](ServerOptions& options) { options.proxies = {"127.0.0.1"}; });
  const auto who = [&](const std::string& fields) {
    return stand.Connect().Get(kWho, fields).body;
  };
  EXPECT_EQ(who("X-Forwarded-For: 10.1.2.3\r\n"),
            R"({"account":"","role":"none","address":"10.1.2.3"})");
  EXPECT_EQ(who("X-Forwarded-For: 127.0.0.1, 10.1.2.3\r\n"),
            R"({"account":"","role":"none","address":"10.1.2.3"})");
  EXPECT_EQ(who("X-Forwarded-For: 127.0.0.1\r\nX-Forwarded-For: 10.1.2.3\r\n"),
            R"({"account":"","role":"none","address":"10.1.2.3"})");
  EXPECT_EQ(who(""), kAdminOnLoopback);
}

// Behind the body a client says what it likes, and no proxy looks at it.
TEST(GateBehindAProxyTest, WhatComesBehindTheBodyIsNoHeader) {
  Stand stand([](ServerOptions& options) { options.proxies = {"127.0.0.1"}; });
  for (const std::string field :
       {"X-Forwarded-For: ::1", "Host: evil.example", "Origin: http://evil.example",
        "Authorization: Bearer no", "Sec-Fetch-Site: cross-site"}) {
    const Reply reply = stand.Connect().Ask(
        RequestText("GET", kWho, "X-Forwarded-For: 10.1.2.3\r\nTransfer-Encoding: chunked\r\n") +
        "0\r\n" + field + "\r\n\r\n");
    EXPECT_EQ(reply.body, R"({"account":"","role":"none","address":"10.1.2.3"})") << field;
  }
}

TEST(GateBehindAProxyTest, TheSchemeIsTheOneThatTheProxySpeaks) {
  Stand stand([](ServerOptions& options) { options.proxies = {"127.0.0.1"}; });
  const std::string origin = "Origin: https://localhost\r\n";
  EXPECT_EQ(stand.Connect().Get(kWho, origin).status, 403);
  EXPECT_EQ(stand.Connect().Get(kWho, origin + "X-Forwarded-Proto: https\r\n").status, 200);
}

TEST_F(GateTest, APageOfAnotherSiteMayNotEvenRead) {
  const auto status = [&](const std::string& path, const std::string& site) {
    return stand.Connect().Get(path, "Sec-Fetch-Site: " + site + "\r\n").status;
  };
  EXPECT_EQ(status("/api/things/lamp", "cross-site"), 403);
  EXPECT_EQ(status("/api/things/lamp", "same-site"), 403);
  EXPECT_EQ(status("/api/things/lamp", "same-origin"), 200);
  EXPECT_EQ(status("/api/things/lamp", "none"), 200);
  EXPECT_EQ(status("/healthz", "cross-site"), 200);
}

}  // namespace
}  // namespace hub::http
