// qelm-hub as a process on a site: daemon and virtual bus as everywhere, the hub between them and
// its clients. It finds the daemon's ports and the bus's control socket in its settings.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "SiteTest.h"

inline constexpr int kTextCae = 5110;
inline constexpr int kTextIo = 5111;
inline constexpr int kTextMon = 5112;
inline constexpr int kWeb = 5080;
inline constexpr char kHubSocket[] = "/run/test/hub.sock";

// A client of a server that ends the connection.
class WholeAnswer : public Stream {
 public:
  explicit WholeAnswer(Stream&& stream) : Stream(std::move(stream)) {}
  std::string ReadAll();
};

class HubSite : public SiteTest {
 protected:
  void TearDown() override;

  // Bus, daemon and hub; the lamps answer.
  void StartAll(const std::string& more_settings = "");

  // What a hub of this site has in its settings, and more of them.
  static void WriteSettings(const std::string& more_settings = "");
  // Another process where one was running; what it is started by may stand in front.
  void LaunchHub(const std::vector<std::string>& in_front = {});
  void StartHub();                         // and waits until it serves the lamps
  void SayHup(const std::string& answer);  // reads its settings again, and says so

  // A request over HTTP and all of its answer.
  static std::string Ask(const std::string& verb, const std::string& path,
                         const std::string& body = "", const std::string& headers = "");
  // The same over the local socket, which may do all.
  static std::string AskLocally(const std::string& verb, const std::string& path,
                                const std::string& body = "");
  static int StatusOf(const std::string& answer);
  static void AddAccount(const std::string& name, const std::string& role);
  // Of an account of that kind: the header of its new session.
  static std::string LogIn(const std::string& name);
  static std::string AddToken(const std::string& name, const std::string& role);  // its secret

  static Client Greeted(int port);

  std::unique_ptr<virtualbus::Program> hub;

 private:
  TempDir folder_;
};
