// What a login has opened ends with it and with nothing else, and its secrets come out nowhere.
#include <signal.h>

#include "HubSite.h"
#include "WebClient.h"

using hub::http::WebClient;

// Where there is a cookie, a browser's page has to be ours.
constexpr char kOrigin[] = "Origin: http://localhost\r\n";

class SecretsTest : public HubSite {
 protected:
  static WebClient Live(const std::string& headers = "") {
    WebClient client = WebClient::ToPort(kWeb);
    EXPECT_EQ(client.Upgrade("/api/live", kOrigin + headers).status, 101);
    return client;
  }
};

TEST_F(SecretsTest, WhatALoginOpenedEndsWithIt) {
  StartAll();
  WebClient nameless = Live();
  AddAccount("operator", "admin");
  EXPECT_TRUE(nameless.Ends()) << "with the first account";
  WebClient other = Live(LogIn("operator"));
  AddAccount("clerk", "use");
  std::string cookie = LogIn("clerk");
  WebClient live = Live(cookie);
  Ask("DELETE", "/api/session", "", cookie);
  EXPECT_TRUE(live.Ends()) << "with the log-out";
  live = Live(LogIn("clerk"));
  AskLocally("PUT", "/api/accounts/clerk", R"({"password":"another horse"})");
  EXPECT_TRUE(live.Ends()) << "with the password";
  AskLocally("PUT", "/api/accounts/clerk", R"({"password":"correct horse"})");
  live = Live(LogIn("clerk"));
  AskLocally("DELETE", "/api/accounts/clerk");
  EXPECT_TRUE(live.Ends()) << "with the account";
  EXPECT_FALSE(other.IsEnded());
}

TEST_F(SecretsTest, WhatATokenOpenedEndsWithIt) {
  StartAll();
  // The last of what the hub asks of its own accord; its answer goes to all clients of IO.
  ASSERT_TRUE(WaitUntil([] {
    return AskLocally("GET", "/api/channels/F.5").find(R"("known":true)") != std::string::npos;
  }));
  AddAccount("operator", "admin");
  const auto open = [](const std::string& token) {
    Client text(kTextIo);
    text.Send("TOKEN " + token + "\r\n");
    text.ExpectBytes("QELM IO interface is ready\r\n\r");
    return std::pair(std::move(text), Live("Authorization: Bearer " + token + "\r\n"));
  };
  auto [text, live] = open(AddToken("script", "use"));
  auto [other_text, other_live] = open(AddToken("other", "use"));
  AskLocally("DELETE", "/api/tokens/script");
  text.ExpectClosed();
  EXPECT_TRUE(live.Ends());
  EXPECT_FALSE(other_live.IsEnded());
  other_text.ExpectSilence();
}

TEST_F(SecretsTest, SettingsThatAreReadAgainEndNoLogin) {
  StartAll();
  AddAccount("operator", "admin");
  WebClient live = Live(LogIn("operator"));
  live.SendText(R"({"jsonrpc":"2.0","id":1,"method":"live.subscribe"})");
  live.ReadText();
  WriteSettings("[names]\n\"5.0\" = \"Lamp\"\n");
  SayHup("settings read again\n");
  std::string change;
  while (change.find(R"("id":"5.0","name":"Lamp")") == std::string::npos) change = live.ReadText();
  LogIn("operator");
}

// Good calls and bad ones; but for the answers that hand a secret out, nothing ever tells one.
TEST_F(SecretsTest, NoSecretComesOutAgain) {
  StartAll();
  AddAccount("operator", "admin");
  const std::string cookie = LogIn("operator");
  const std::string token = AddToken("script", "admin");
  const std::string handed = Ask("POST", "/api/session/ticket", "", cookie);
  const size_t at = handed.find(R"("ticket":")") + 10;
  const std::string ticket = handed.substr(at, handed.find('"', at) - at);
  const std::string session =
      cookie.substr(cookie.find('=') + 1, cookie.size() - 2 - cookie.find('=') - 1);
  const std::string bearer = "Authorization: Bearer " + token;
  struct Call {
    const char* verb;
    std::string path;
    std::string body;
    std::string headers;
    int status;
  };
  const Call calls[] = {
      {"GET", "/api/session", "", cookie, 200},
      {"GET", "/api/accounts", "", cookie, 200},
      {"GET", "/api/tokens", "", bearer + "\r\n", 200},
      {"GET", "/api/backup", "", bearer + "\r\n", 200},
      {"GET", "/metrics", "", bearer + "\r\n", 200},
      {"GET", "/api/bus", "", bearer + "x\r\n", 401},
      {"GET", "/api/bus?token=" + token, "", cookie, 422},
      {"GET", "/api/live?ticket=" + ticket, "", "", 426},
      {"GET", "/api/live?ticket=" + ticket, "", "", 401},
      {"GET", "/" + ticket, "", "", 404},
      {"POST", "/api/session", R"({"account":"nobody","password":"correct horse"})", "", 401},
      {"POST", "/api/session", R"({"account":"operator","password":"correct horse")", "", 400},
      {"POST", "/api/session", R"({"account":"operator","password":["correct horse"]})", "", 422},
      {"POST", "/api/session", R"({"account":"operator","password":"correct horse","x":1})", "",
       422},
      {"POST", "/api/accounts", R"({"account":"operator","password":"correct horse","role":"use"})",
       cookie, 409},
      {"POST", "/api/accounts", R"({"account":"clerk","password":"correct horse","role":"x"})",
       cookie, 422},
      {"POST", "/api/tokens", R"({"name":"script","role":"use"})", cookie, 409},
      {"PUT", "/api/accounts/operator", R"({"password":"correct horse","role":"x"})", cookie, 422},
      {"GET", "/api/journal?limit=1000", "", cookie, 200},
  };
  std::string said;
  for (const Call& call : calls) {
    const std::string answer = Ask(call.verb, call.path, call.body, call.headers);
    EXPECT_EQ(StatusOf(answer), call.status) << call.verb << ' ' << call.path << '\n' << answer;
    said += answer;
  }
  for (const std::string& line : {"TOKEN " + token, "TOKEN " + token + "x"}) {
    WholeAnswer client{Client(kTextIo)};
    client.Send(line + "\r\nEXIT\r\n");
    said += client.ReadAll();
  }
  hub->Signal(SIGTERM);
  EXPECT_EQ(hub->WaitForExit(), 0);
  said += hub->Errors() + ReadFile("/run/test/store/hub.db");
  for (const std::string& secret : {std::string("correct horse"), session, token, ticket}) {
    ASSERT_GE(secret.size(), 13U);
    EXPECT_EQ(said.find(secret), std::string::npos) << secret;
  }
}
