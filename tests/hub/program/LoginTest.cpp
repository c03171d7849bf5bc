// A hub that has accounts: nobody gets past a door without a login, and only the local socket
// needs none.
#include <signal.h>

#include <cstdlib>
#include <filesystem>

#include "HubSite.h"
#include "WebClient.h"
#include "kit/Ports.h"

using hub::http::WebClient;

namespace {

struct Route {
  const char* verb;
  const char* path;
};

// Each route of the table but those of the login itself.
constexpr Route kRoutes[] = {
    {"GET", "/api/bus"},
    {"POST", "/api/bus/discover"},
    {"PUT", "/api/bus/pace"},
    {"PUT", "/api/bus/polling"},
    {"GET", "/api/cards"},
    {"GET", "/api/cards/5"},
    {"PATCH", "/api/cards/5"},
    {"PUT", "/api/cards/3/polling"},
    {"POST", "/api/cards/5/reboot"},
    {"GET", "/api/channels/5.0"},
    {"PUT", "/api/channels/5.0"},
    {"POST", "/api/cards/E/text"},
    {"POST", "/api/cards/E/control"},
    {"POST", "/api/cards/9/infrared"},
    {"GET", "/api/cards/0/settings"},
    {"PUT", "/api/cards/0/settings"},
    {"POST", "/api/cards/0/settings/store"},
    {"POST", "/api/console"},
    {"GET", "/api/history"},
    {"GET", "/api/journal"},
    {"GET", "/api/names"},
    {"PUT", "/api/names"},
    {"PATCH", "/api/names"},
    {"GET", "/api/setup"},
    {"PUT", "/api/setup"},
    {"PATCH", "/api/setup"},
    {"GET", "/api/page"},
    {"PUT", "/api/page"},
    {"GET", "/api/virtual-bus"},
    {"POST", "/api/virtual-bus"},
    {"GET", "/api/backup"},
    {"PUT", "/api/backup"},
    {"POST", "/api/session/ticket"},
    {"GET", "/api/accounts"},
    {"POST", "/api/accounts"},
    {"PUT", "/api/accounts/operator"},
    {"DELETE", "/api/accounts/operator"},
    {"GET", "/api/tokens"},
    {"POST", "/api/tokens"},
    {"DELETE", "/api/tokens/script"},
    {"GET", "/api/boards"},
    {"GET", "/api/boards/barn"},
    {"GET", "/api/boards/barn/cards"},
    {"GET", "/api/boards/barn/cards/5"},
    {"GET", "/api/boards/barn/channels/5.0"},
    {"PUT", "/api/boards/barn/channels/5.0"},
    {"POST", "/api/boards/barn/cards/E/text"},
    {"POST", "/api/boards/barn/cards/E/control"},
    {"POST", "/api/boards/barn/cards/9/infrared"},
};
constexpr size_t kRoutesElsewhere = 4;  // the login's, and the WebSocket

size_t Count(const std::string& text, const std::string& what) {
  size_t count = 0;
  for (size_t at = text.find(what); at != std::string::npos; at = text.find(what, at + 1)) ++count;
  return count;
}

}  // namespace

class LoginTest : public HubSite {
 protected:
  void StartWithAccount() {
    StartAll();
    AddAccount("operator", "admin");
  }
};

TEST_F(LoginTest, NoRouteAnswersWithoutALogin) {
  StartWithAccount();
  for (const Route& route : kRoutes) {
    const std::string answer = Ask(route.verb, route.path);
    EXPECT_EQ(StatusOf(answer), 401) << route.verb << ' ' << route.path << '\n' << answer;
    const std::string body = Ask(route.verb, route.path, "{}", "Authorization: Bearer \r\n");
    EXPECT_EQ(StatusOf(body), 401) << route.verb << ' ' << route.path << '\n' << body;
    const char* const other = route.verb == std::string("GET") ? "HEAD" : "OPTIONS";
    for (const char* verb : {other, "OPTIONS"})
      EXPECT_EQ(StatusOf(Ask(verb, route.path)), 401) << verb << ' ' << route.path;
  }
  for (const char* path : {"/metrics", "/api/openapi.json", "/api/live"})
    for (const char* verb : {"GET", "HEAD", "OPTIONS"})
      EXPECT_EQ(StatusOf(Ask(verb, path)), 401) << verb << ' ' << path;
  const std::string table = AskLocally("GET", "/api/openapi.json");
  EXPECT_EQ(Count(table, "\"operationId\""), std::size(kRoutes) + kRoutesElsewhere);
}

// The accounts went with a broken store: only one that is made anew opens the network again.
TEST_F(LoginTest, AHubThatLostItsAccountsStaysShutUntilThereIsOne) {
  StartWithAccount();
  hub.reset();
  WriteFile("/run/test/store/hub.db", std::string(5000, 'g'));
  const auto starts_shut = [this] {
    hub.reset();
    std::filesystem::remove(kHubSocket);
    LaunchHub();
    return WaitUntil([&] {
      return std::filesystem::exists(kHubSocket) &&
             hub->Errors().find("the accounts are lost") != std::string::npos;
    });
  };
  ASSERT_TRUE(starts_shut());
  EXPECT_FALSE(IsListening(kWeb));
  EXPECT_EQ(StatusOf(AskLocally("POST", "/api/tokens", R"({"name":"x","role":"view"})")), 200);
  ASSERT_TRUE(starts_shut());
  EXPECT_FALSE(IsListening(kWeb));
  EXPECT_FALSE(IsListening(kTextCae));
  AddAccount("operator", "admin");
  StartHub();
  EXPECT_EQ(StatusOf(Ask("GET", "/api/bus")), 401);
}

TEST_F(LoginTest, NoWebSocketOpensWithoutALogin) {
  StartWithAccount();
  const std::string upgrade =
      "Upgrade: websocket\r\nSec-WebSocket-Version: 13\r\n"
      "Sec-WebSocket-Key: dGhlIHNhbXBsZSBub25jZQ==\r\nConnection: Upgrade, close\r\n";
  EXPECT_EQ(StatusOf(Ask("GET", "/api/live", "", upgrade)), 401);
  EXPECT_EQ(StatusOf(Ask("GET", "/api/live?ticket=x", "", upgrade)), 401);
}

TEST_F(LoginTest, NoTextPortServesWithoutAToken) {
  StartWithAccount();
  for (const int port : {kTextCae, kTextIo, kTextMon}) {
    Client client(port);
    client.Send("a5b1dFE\r\nDRVVER\r\n");
    client.ExpectBytes("QELM: a token is needed: TOKEN ...\r\n\r");
    client.ExpectClosed();
  }
  Bus("show 5");
  ExpectHeld("5", "Lines FF FF");
}

TEST_F(LoginTest, ThePageAndItsHealthAreThereBeforeTheLogin) {
  StartWithAccount();
  for (const char* path : {"/", "/healthz", "/api/session"}) {
    EXPECT_EQ(StatusOf(Ask("GET", path)), 200) << path;
    EXPECT_EQ(StatusOf(Ask("OPTIONS", path)), 204) << path;
  }
  EXPECT_EQ(StatusOf(Ask("DELETE", "/api/session")), 200);
}

TEST_F(LoginTest, ALoginBringsACookieThatOpensTheDoors) {
  StartWithAccount();
  const std::string cookie = LogIn("operator");
  EXPECT_EQ(StatusOf(Ask("GET", "/api/bus", "", cookie)), 200);
  EXPECT_EQ(StatusOf(Ask("POST", "/api/bus/discover", "", cookie)), 200)
      << "without a body or type";
  EXPECT_EQ(StatusOf(Ask("DELETE", "/api/session", "", cookie)), 200);
  EXPECT_EQ(StatusOf(Ask("GET", "/api/bus", "", cookie)), 401);
}

TEST_F(LoginTest, FurtherHostsAndProxiesAreThoseOfTheSettings) {
  StartAll("[http]\nhosts = [\"bench.local\"]\nproxies = [\"127.0.0.1\"]\n");
  AddAccount("operator", "admin");
  for (const auto& [host, status] : {std::pair{"bench.local", 200}, {"shed.local", 403}}) {
    const std::string request = std::string("GET /api/session HTTP/1.1\r\nHost: ") + host;
    EXPECT_EQ(WebClient::ToPort(kWeb).Ask(request + "\r\n\r\n").status, status) << host;
  }
  const std::string body = R"({"account":"operator","password":"correct horse"})";
  const auto cookie = [&](const std::string& fields) {
    return WebClient::ToPort(kWeb)
        .Write("POST", "/api/session", body, fields)
        .fields.at("set-cookie");
  };
  EXPECT_NE(cookie("X-Forwarded-Proto: https\r\n").find("; Secure"), std::string::npos);
  EXPECT_EQ(cookie("").find("; Secure"), std::string::npos);
}

TEST_F(LoginTest, AsManyConnectionsAsTheSettingsSay) {
  StartAll("[http]\nmax-connections = 2\n");
  std::vector<WebClient> clients;
  for (int i = 0; i < 2; ++i) {
    clients.push_back(WebClient::ToPort(kWeb));
    EXPECT_EQ(clients.back().Get("/healthz").status, 200);
  }
  EXPECT_EQ(WebClient::ToPort(kWeb).Read().status, 503);
}

TEST_F(LoginTest, TheFirstAccountClosesTheTextPortsToWhoCameWithoutOne) {
  StartAll();
  Client client = Greeted(kTextIo);
  AddAccount("operator", "admin");
  client.ExpectClosed();
}

// What others can reach is asked for an account first, then for TLS or the word that it is meant.
TEST_F(LoginTest, WhatOthersReachIsNotServedBeforeThereIsAnAccountAndTls) {
  const auto refusal = [&](const std::string& settings) {
    WriteSettings("[http]\nlisten = [\"127.0.0.1:5080\", \"10.9.8.7:5080\"]\n" + settings);
    LaunchHub();
    EXPECT_EQ(hub->WaitForExit(), EXIT_FAILURE);
    return hub->Errors();
  };
  ASSERT_EQ(std::system("ip address add 10.9.8.7/32 dev lo"), 0);
  const std::string both = "that takes `certificate` and `key`, or `insecure-http = true`";
  std::string why = refusal("");
  EXPECT_NE(why.find(both), std::string::npos) << why;
  why = refusal("insecure-http = true\n");
  EXPECT_NE(why.find("will not listen on 10.9.8.7:5080: others reach it, and there is no account "
                     "yet; make one over the Unix socket first"),
            std::string::npos)
      << why;
  StartAll();
  AddAccount("operator", "admin");
  hub->Signal(SIGTERM);
  EXPECT_EQ(hub->WaitForExit(), 0);
  WriteSettings("[http]\nlisten = [\"127.0.0.1:5080\", \"10.9.8.7:5080\"]\ninsecure-http = true\n");
  StartHub();
  EXPECT_NE(hub->Errors().find("listening on 10.9.8.7:5080"), std::string::npos);
}

TEST_F(LoginTest, QelmctlSpeaksTlsAndSaysWhatToDoWhereItTrustsNobody) {
  StartAll();
  AddAccount("operator", "admin");
  WriteFile("/run/test/token", AddToken("ctl", "view") + "\n");
  ASSERT_EQ(std::system("ip address add 10.9.8.7/32 dev lo && cd /run/test && "
                        "openssl req -x509 -newkey ec -pkeyopt ec_paramgen_curve:P-256 -nodes "
                        "-config /dev/null -subj /CN=hub -days 2 -addext "
                        "subjectAltName=IP:10.9.8.7 -keyout hub.key -out hub.pem 2>/run/test/log"),
            0);
  WriteSettings(
      "[http]\nlisten = [\"127.0.0.1:5080\", \"10.9.8.7:5443\"]\n"
      "certificate = \"/run/test/hub.pem\"\nkey = \"/run/test/hub.key\"\n");
  StartHub();
  const auto ctl = [](const std::string& options) {
    const std::string command = std::string(QELMCTL) + " --url https://10.9.8.7:5443 " + options +
                                " status >/run/test/said 2>&1";
    return WEXITSTATUS(std::system(command.c_str()));
  };
  EXPECT_EQ(ctl("--ca /run/test/hub.pem --token-file /run/test/token"), 0);
  EXPECT_NE(ReadFile("/run/test/said").find("1.20"), std::string::npos)
      << ReadFile("/run/test/said");
  EXPECT_EQ(ctl("--token-file /run/test/token"), 3);
  const std::string said = ReadFile("/run/test/said");
  EXPECT_NE(said.find("its certificate is not trusted"), std::string::npos) << said;
  EXPECT_NE(said.find("--ca FILE"), std::string::npos) << said;
}
