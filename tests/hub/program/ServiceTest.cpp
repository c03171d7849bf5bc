// The hub as a service: what it tells its manager, the socket that it is given, and settings that
// are read again while clients stay connected.
#include <signal.h>
#include <sys/resource.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <cstdlib>
#include <cstring>

#include "HubSite.h"
#include "kit/Ports.h"

namespace {

sockaddr_un AddressOf(const char* path) {
  sockaddr_un address{};
  address.sun_family = AF_UNIX;
  std::strncpy(address.sun_path, path, sizeof(address.sun_path) - 1);
  return address;
}

// A service manager's ear.
class Manager {
 public:
  Manager() : fd_(socket(AF_UNIX, SOCK_DGRAM | SOCK_CLOEXEC, 0)) {
    const sockaddr_un address = AddressOf(kPath);
    bind(fd_, reinterpret_cast<const sockaddr*>(&address), sizeof(address));
    const timeval patience{.tv_sec = kPatience.count(), .tv_usec = 0};
    setsockopt(fd_, SOL_SOCKET, SO_RCVTIMEO, &patience, sizeof(patience));
    setenv("NOTIFY_SOCKET", kPath, 1);
  }
  ~Manager() {
    unsetenv("NOTIFY_SOCKET");
    unsetenv("WATCHDOG_USEC");
    close(fd_);
  }
  Manager(const Manager&) = delete;
  Manager& operator=(const Manager&) = delete;

  std::string Hear() {
    char text[256] = {};
    const ssize_t count = recv(fd_, text, sizeof(text), 0);
    return count < 0 ? "nothing" : std::string(text, static_cast<size_t>(count));
  }

 private:
  static constexpr char kPath[] = "/run/test/notify";
  int fd_;
};

}  // namespace

class ServiceTest : public HubSite {};

TEST_F(ServiceTest, ItTellsItsManagerWhenItIsReadyReloadsAndStops) {
  Manager manager;
  WriteSettings();
  LaunchHub();
  EXPECT_EQ(manager.Hear(), "READY=1");
  EXPECT_TRUE(IsListening(kWeb)) << "before it says so";
  hub->Signal(SIGHUP);
  const std::string reloading = manager.Hear();
  EXPECT_TRUE(reloading.starts_with("RELOADING=1\nMONOTONIC_USEC=")) << reloading;
  EXPECT_EQ(manager.Hear(), "READY=1");
  hub->Signal(SIGTERM);
  EXPECT_EQ(manager.Hear(), "STOPPING=1");
  EXPECT_EQ(hub->WaitForExit(), 0);
}

// The journal's last entries are gathered for up to a minute: the end is not.
TEST_F(ServiceTest, ItEndsAtOnceAndLosesNothingOfTheJournal) {
  StartAll();
  hub->Signal(SIGTERM);
  EXPECT_TRUE(WaitUntil([&] { return !hub->IsRunning(); }, std::chrono::seconds(30)));
  StartHub();
  const std::string journal = AskLocally("GET", "/api/journal?limit=1000");
  EXPECT_NE(journal.find(R"("kind":"hub","text":"stopped")"), std::string::npos) << journal;
}

TEST_F(ServiceTest, ItTellsTheWatchdogThatItLives) {
  Manager manager;
  setenv("WATCHDOG_USEC", "200000", 1);
  WriteSettings();
  LaunchHub();
  std::string heard;
  for (int i = 0; i < 4; ++i) heard += manager.Hear() + '\n';
  EXPECT_EQ(heard, "WATCHDOG=1\nREADY=1\nWATCHDOG=1\nWATCHDOG=1\n");
}

TEST_F(ServiceTest, ASocketOfItsManagerIsServed) {
  const int listener = socket(AF_UNIX, SOCK_STREAM, 0);
  const sockaddr_un address = AddressOf(kHubSocket);
  ASSERT_EQ(bind(listener, reinterpret_cast<const sockaddr*>(&address), sizeof(address)), 0);
  ASSERT_EQ(listen(listener, 16), 0);
  WriteSettings();
  // The third descriptor, and the process that it is meant for.
  LaunchHub(
      {"/bin/bash", "-c",
       "export LISTEN_PID=$$ LISTEN_FDS=1; exec \"$0\" \"$@\" 3<&" + std::to_string(listener)});
  EXPECT_EQ(StatusOf(AskLocally("GET", "/api/bus")), 200);
  hub->Signal(SIGTERM);
  EXPECT_EQ(hub->WaitForExit(), 0);
  EXPECT_EQ(access(kHubSocket, F_OK), 0) << "it is its manager's";
  close(listener);
}

TEST_F(ServiceTest, NamesAndUnitsAreReadAgainAndNoClientIsDropped) {
  StartAll("[names]\n\"5\" = \"Relays\"\n");
  Client client = Greeted(kTextIo);
  WriteSettings("[names]\n\"5\" = \"Lights\"\n[channel.\"F.3\"]\nunit = \"V\"\nmax = 5\n");
  SayHup("qelm-hub: settings read again\n");
  EXPECT_NE(AskLocally("GET", "/api/cards/5").find(R"("name":"Lights")"), std::string::npos);
  EXPECT_NE(AskLocally("GET", "/api/channels/F.3").find(R"("unit":"V")"), std::string::npos);
  client.Send("a5b1dFE\r\n");
  ExpectHeld("5", "Lines FF FE");
}

TEST_F(ServiceTest, WhatNeedsARestartIsNamedByKeyEachTime) {
  StartAll();
  WriteSettings("keep-days = 30\n[http]\nmax-connections = 1000\n[text]\ncae = 6110\n");
  SayHup(
      "settings read again; a restart is needed for http.max-connections, text.cae, "
      "store.keep-days\n");
  EXPECT_TRUE(IsListening(kTextCae));
  WriteSettings("[text]\ncae = 6110\n");
  SayHup("settings read again; a restart is needed for text.cae\n");
  WriteSettings();
  SayHup("settings read again\n");
}

TEST_F(ServiceTest, AFileWithErrorsChangesNothing) {
  StartAll("[names]\n\"5\" = \"Relays\"\n");
  WriteSettings("[names]\n\"5\" = \"Lights\"\n\"G\" = \"x\"\n");
  SayHup("settings are not read again: the file has errors\n");
  EXPECT_NE(hub->Errors().find("qelm-hub.toml:10:7: "), std::string::npos) << hub->Errors();
  EXPECT_NE(AskLocally("GET", "/api/cards/5").find(R"("name":"Relays")"), std::string::npos);
}

TEST_F(ServiceTest, ItMayOpenAsManyFilesAsTheSystemAllows) {
  const rlimit few{.rlim_cur = 64, .rlim_max = 4096};
  ASSERT_EQ(setrlimit(RLIMIT_NOFILE, &few), 0);
  WriteSettings("[http]\nmax-connections = 1000\n");
  LaunchHub();
  ASSERT_TRUE(WaitUntil([] { return IsListening(kWeb); }));
  rlimit limit{};
  ASSERT_EQ(prlimit(hub->Pid(), RLIMIT_NOFILE, nullptr, &limit), 0);
  EXPECT_EQ(limit.rlim_cur, 4096U);
}

TEST_F(ServiceTest, ACheckOfTheSettingsSaysWhatIsWrongAndServesNobody) {
  const TempDir folder;
  const auto outcome = [&folder](const std::string& text) {
    const std::string file = folder.Write("hub.toml", text);
    virtualbus::Program check(folder, QELM_HUB_BINARY, {"--config", file, "--check"});
    const int status = check.WaitForExit();
    EXPECT_EQ(check.Output(), "");
    std::string said = check.Errors();
    for (size_t at; (at = said.find(file)) != std::string::npos;)
      said.replace(at, file.size(), "F");
    return std::to_string(status) + ' ' + said;
  };
  EXPECT_EQ(outcome("[http]\nmax-connections = 2\n"), "0 ");
  EXPECT_EQ(outcome("[htpp]\n"), "1 F:1:2: unknown section `htpp`; is it `http`?\n");
  EXPECT_EQ(outcome("[daemon]\ncea = 1\n[htpp]\n"),
            "1 F:2:1: unknown key `cea`; is it `cae`?\n"
            "F:3:2: unknown section `htpp`; is it `http`?\n");
  EXPECT_FALSE(IsListening(kWeb));
}
