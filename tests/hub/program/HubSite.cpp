#include "HubSite.h"

#include <signal.h>

#include "kit/Ports.h"

namespace {

constexpr char kSettings[] = "/etc/qelm/qelm-hub.toml";

std::string RequestText(const std::string& verb, const std::string& path, const std::string& body,
                        const std::string& headers) {
  std::string request = verb + ' ' + path + " HTTP/1.1\r\nHost: localhost\r\n" + headers;
  if (headers.find("Connection: ") == std::string::npos) request += "Connection: close\r\n";
  if (!body.empty())
    request +=
        "Content-Type: application/json\r\nContent-Length: " + std::to_string(body.size()) + "\r\n";
  return request + "\r\n" + body;
}

std::string Between(const std::string& text, const std::string& before, const std::string& after) {
  const size_t begin = text.find(before) + before.size();
  return text.substr(begin, text.find(after, begin) - begin);
}

}  // namespace

std::string WholeAnswer::ReadAll() {
  while (ReadMore()) continue;
  return Take(unread_.size());
}

void HubSite::TearDown() {
  if (HasFailure() && hub) std::cout << "--- hub\n" << hub->Errors();
  hub.reset();
  SiteTest::TearDown();
}

void HubSite::StartAll(const std::string& more_settings) {
  WriteConfig({.percent = "80", .poll = "TRUE"});
  StartBus();
  StartDaemon();
  WriteSettings(more_settings);
  StartHub();
}

void HubSite::WriteSettings(const std::string& more_settings) {
  WriteFile(kSettings, "[daemon]\ncae = " + std::to_string(::kCae) +
                           "\nio = " + std::to_string(::kIo) + "\nmon = " + std::to_string(::kMon) +
                           "\nlog = \"" + kLogFile + "\"\n[store]\nfolder = \"/run/test/store\"\n" +
                           more_settings);
}

void HubSite::LaunchHub(const std::vector<std::string>& in_front) {
  hub.reset();
  std::vector<std::string> words = in_front;
  words.insert(words.end(), {QELM_HUB_BINARY, "--config", kSettings, "--socket", kHubSocket});
  const std::string program = words.front();
  words.erase(words.begin());
  hub = std::make_unique<virtualbus::Program>(folder_, program, words);
}

void HubSite::StartHub() {
  LaunchHub();
  ASSERT_TRUE(WaitUntil([] { return IsListening(kTextIo) && IsListening(kWeb); }));
  ASSERT_TRUE(WaitUntil([] {
    return AskLocally("GET", "/api/cards/5").find(R"("state":"present")") != std::string::npos;
  }));
}

void HubSite::SayHup(const std::string& answer) {
  hub->Signal(SIGHUP);
  EXPECT_TRUE(WaitUntil([&] { return hub->Errors().find(answer) != std::string::npos; }))
      << hub->Errors();
}

std::string HubSite::Ask(const std::string& verb, const std::string& path, const std::string& body,
                         const std::string& headers) {
  WholeAnswer client{Client(kWeb)};
  client.Send(RequestText(verb, path, body, headers));
  return client.ReadAll();
}

std::string HubSite::AskLocally(const std::string& verb, const std::string& path,
                                const std::string& body) {
  WholeAnswer client{Stream::ToPath(kHubSocket)};
  client.Send(RequestText(verb, path, body, ""));
  return client.ReadAll();
}

int HubSite::StatusOf(const std::string& answer) {
  constexpr std::string_view kBefore = "HTTP/1.1 ";
  return answer.starts_with(kBefore) ? std::stoi(answer.substr(kBefore.size())) : 0;
}

void HubSite::AddAccount(const std::string& name, const std::string& role) {
  const std::string answer = AskLocally(
      "POST", "/api/accounts",
      R"({"account":")" + name + R"(","password":"correct horse","role":")" + role + R"("})");
  EXPECT_EQ(StatusOf(answer), 200) << answer;
}

std::string HubSite::LogIn(const std::string& name) {
  const std::string answer =
      Ask("POST", "/api/session", R"({"account":")" + name + R"(","password":"correct horse"})");
  EXPECT_EQ(StatusOf(answer), 200) << answer;
  return "Cookie: " + Between(answer, "Set-Cookie: ", ";") + "\r\n";
}

std::string HubSite::AddToken(const std::string& name, const std::string& role) {
  const std::string answer =
      AskLocally("POST", "/api/tokens", R"({"name":")" + name + R"(","role":")" + role + R"("})");
  EXPECT_EQ(StatusOf(answer), 200) << answer;
  return Between(answer, R"("token":")", "\"");
}

Client HubSite::Greeted(int port) {
  Client client(port);
  client.ExpectBytes(port == kTextCae
                         ? "QELM CAE interface is ready\r\n(Type HELP for help)\r\n>\r\n\r"
                     : port == kTextIo ? "QELM IO interface is ready\r\n\r"
                                       : "QELM MON interface is ready\r\n\r");
  return client;
}
