// Real sites, each broken in one way, and what doctor finds. The daemon is the real one on the
// virtual bus; the hub is a fake one that answers like a hub that has them.
#include <signal.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <memory>

#include "Ctl.h"
#include "FakeHub.h"
#include "SiteTest.h"
#include "kit/Listener.h"

namespace {

constexpr char kLogFolder[] = "/run/test/log";

class Doctor : public SiteTest {
 protected:
  void SetUp() override {
    SiteTest::SetUp();
    hub = std::make_unique<FakeHub>();
    SayBus(R"({"state":"up","version":"1.20","waiting_for":null})");
    hub->Answer("GET /api/cards",
                R"({"cards":[{"address":"5","name":"Relays","state":"present"}]})");
  }

  void SayBus(const std::string& daemon_state, int status = 200) {
    hub->Answer("GET /api/bus", R"({"name":"bench","virtual":true,"daemon":)" + daemon_state + "}",
                status);
  }

  // The daemon on the bus; nobody is connected.
  void StartQuietSite(const std::vector<std::string>& options = {}) {
    StartBus(options);
    StartDaemon();
    ExpectLog("INF", "hardware found on /dev/ttyUSB0 version: v1.2");
  }

  // With the patience for a port that greets.
  void Examine(const std::string& patience = "60s") {
    report = RunCtl({"--socket", hub ? hub->SocketPath() : "/run/test/hub.sock", "--json", "doctor",
                     "--wait", patience});
  }

  // A check says this, in these words or with them.
  void ExpectFound(const std::string& check, const std::string& verdict, const std::string& words,
                   Place place = Place::current()) {
    const std::string start =
        "{\"check\":\"" + check + "\",\"verdict\":\"" + verdict + "\",\"found\":\"";
    for (size_t at = report.out.find(start); at != std::string::npos;
         at = report.out.find(start, at + 1)) {
      const size_t end = report.out.find('}', at);
      if (report.out.substr(at, end - at).find(words) != std::string::npos) return;
    }
    FAIL_AT(place) << check << " is not " << verdict << " with \"" << words << "\":\n"
                   << report.out << report.err;
  }

  // That, and the status that says that something is wrong.
  void ExpectWrong(const std::string& check, const std::string& words,
                   Place place = Place::current()) {
    ExpectFound(check, "wrong", words, place);
    if (report.status != 1) FAIL_AT(place) << "status " << report.status;
  }

  std::string Self() const { return "(process " + std::to_string(getpid()) + ")"; }

  std::unique_ptr<FakeHub> hub;
  Outcome report;
};

TEST_F(Doctor, AHealthySiteIsWell) {
  StartQuietSite();
  Examine();
  EXPECT_EQ(report.status, 0) << report.out;
  EXPECT_EQ(report.out.find("\"wrong\""), std::string::npos) << report.out;
  ExpectFound("daemon", "well", "qelm (process " + std::to_string(daemon.Pid()) + ")");
  ExpectFound("adapter", "well", "hardware found on /dev/ttyUSB0 version: v1.2");
  ExpectFound("ports", "well", "CAE (5001) greets");
  ExpectFound("ports", "well", "IO (5002) greets");
  ExpectFound("ports", "well", "MON (5003) greets");
  ExpectFound("hub", "well", "it has the daemon, version 1.20");
  ExpectFound("cards", "well", "1 answer");
}

TEST_F(Doctor, AMissingConfiguration) {
  std::filesystem::remove(kConfigPath);
  EXPECT_EQ(RunToItsEnd(), 0);
  Examine();
  ExpectWrong("configuration", "/etc/qelm/qelmconf.xml: No such file or directory");
  ExpectWrong("daemon", "mend the configuration");
}

TEST_F(Doctor, ABrokenConfiguration) {
  WriteConfigText("<QELMConfig>\n<Speed Percent=\"50\"\n</QELMConfig>\n");
  EXPECT_EQ(RunToItsEnd(), 0);
  Examine();
  ExpectWrong("configuration", "is no well-formed XML");
  ExpectWrong("daemon", "qelm does not run");
}

TEST_F(Doctor, AMisspeltElementThatTheDaemonPassesOver) {
  std::string text = ReadFile(kConfigPath);
  text.replace(text.find("AutoDiscover"), 12, "Autodiscover");
  WriteConfigText(text);
  StartBus();
  StartDaemon();
  Examine();
  ExpectWrong("configuration", "unknown element \\\"Autodiscover\\\"");
  ExpectWrong("configuration", "write \\\"AutoDiscover\\\"");
}

TEST_F(Doctor, APortBelow1025) {
  std::string text = ReadFile(kConfigPath);
  text.replace(text.find("5002"), 4, "502");
  WriteConfigText(text);
  EXPECT_EQ(RunToItsEnd(), 0);
  Examine();
  ExpectWrong("configuration", "the port 502 is below 1025: the daemon does not start");
}

TEST_F(Doctor, APortThatAnotherProgramHas) {
  const Listener other(kIo);
  StartQuietSite();
  Examine();
  ExpectWrong("ports", "IO (5002) belongs to");
  ExpectWrong("ports", Self());
  ExpectFound("ports", "well", "CAE (5001) greets");
}

TEST_F(Doctor, ALogFolderThatIsMissing) {
  WriteConfig({.log_file = "/run/test/log/qelm.log"});
  StartBus();
  StartDaemon();
  Examine();
  ExpectWrong("log", "the folder /run/test/log is not there");
}

TEST_F(Doctor, ALogOnAReadOnlyVolume) {
  std::filesystem::create_directory(kLogFolder);
  ASSERT_EQ(std::system("mount -t tmpfs -o ro tmpfs /run/test/log"), 0);
  WriteConfig({.log_file = "/run/test/log/qelm.log"});
  StartBus();
  StartDaemon();
  Examine();
  ExpectWrong("log", "is on a read-only volume");
  ASSERT_EQ(std::system("umount /run/test/log"), 0);
}

TEST_F(Doctor, ALogOnAFullVolume) {
  std::filesystem::create_directory(kLogFolder);
  ASSERT_EQ(std::system("mount -t tmpfs -o size=8k tmpfs /run/test/log && "
                        "head -c 100000 /dev/zero >/run/test/log/other 2>/dev/null; "
                        "mountpoint -q /run/test/log"),
            0);
  WriteConfig({.log_file = "/run/test/log/qelm.log"});
  StartBus();
  StartDaemon();
  Examine();
  ExpectWrong("log", "is full");
  ASSERT_EQ(std::system("umount -l /run/test/log"), 0);
}

TEST_F(Doctor, ADaemonThatDoesNotRun) {
  StartBus();
  Examine();
  ExpectWrong("daemon", "qelm does not run");
  ExpectFound("ports", "unseen", "CAE (5001)");
}

TEST_F(Doctor, APidFileThatNamesAnother) {
  StartQuietSite();
  WriteFile(kPidFile, "1");
  Examine();
  ExpectWrong("daemon", "names the process 1, but it is qelm");
  std::filesystem::remove(kPidFile);
  Examine();
  ExpectWrong("daemon", "is missing or holds no number");
}

TEST_F(Doctor, TwoDaemons) {
  StartQuietSite();
  DaemonProcess second;
  ASSERT_EQ(second.Launch({}), 0);
  ASSERT_TRUE(WaitUntil([&] { return ReadFile(kPidFile) != std::to_string(daemon.Pid()); }));
  ASSERT_TRUE(second.WaitForPid());
  Examine();
  ExpectWrong("daemon", "more than one qelm runs");
  second.Kill(SIGTERM);
  second.WaitForEnd();
}

TEST_F(Doctor, NoAdapter) {
  StartDaemon();
  ExpectLog("ERR", "ttyUSB devices couldn't be found");
  Examine();
  ExpectWrong("adapter", "there is no /dev/ttyUSB");
}

TEST_F(Doctor, AnAdapterThatDoesNotAnswer) {
  StartBus({"--do", "mute 600s"});
  StartDaemon();
  ExpectLog("INF", "comm timeout /dev/ttyUSB0");
  Examine();
  ExpectWrong("adapter", "it does not answer");
}

TEST_F(Doctor, AnotherProgramOnTheDevice) {
  StartQuietSite();
  const Stream other = Stream::ToDevice(kDevice);
  Examine();
  ExpectWrong("adapter", "/dev/ttyUSB0 is also open in");
  ExpectWrong("adapter", Self());
}

TEST_F(Doctor, AStrangerOnAPort) {
  StartQuietSite();
  const Client stranger = Connect(kMon);
  Examine();
  ExpectWrong("ports", "MON (5003) is held by");
  ExpectWrong("ports", Self());
}

TEST_F(Doctor, ADaemonThatHangs) {
  StartQuietSite();
  daemon.Kill(SIGSTOP);
  Examine("2s");
  daemon.Kill(SIGCONT);
  ExpectWrong("ports", "CAE (5001) takes a connection and does not greet");
}

TEST_F(Doctor, NoHub) {
  StartQuietSite();
  hub.reset();
  Examine();
  ExpectWrong("hub", "/run/test/hub.sock: is not there");
}

TEST_F(Doctor, ASocketThatADeadHubLeftBehind) {
  StartQuietSite();
  hub.reset();
  sockaddr_un path{};
  path.sun_family = AF_UNIX;
  std::strcpy(path.sun_path, "/run/test/hub.sock");
  const int fd = socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
  ASSERT_EQ(bind(fd, reinterpret_cast<const sockaddr*>(&path), sizeof path), 0);
  close(fd);
  Examine();
  ExpectWrong("hub", "has nobody behind it");
}

TEST_F(Doctor, AHubThatWaitsForAPort) {
  StartQuietSite();
  SayBus(R"({"state":"waiting","version":null,"waiting_for":"io"})");
  Examine();
  ExpectWrong("hub", "another client holds the port io");
}

TEST_F(Doctor, AHubThatWantsALogin) {
  StartQuietSite();
  SayBus("null", 401);
  Examine();
  ExpectFound("hub", "unseen", "answers with status 401");
  ExpectFound("cards", "unseen", "");
}

TEST_F(Doctor, APagePortThatAnotherProgramHas) {
  StartQuietSite();
  const Listener other(5080);
  Examine();
  ExpectWrong("page", "port 5080 belongs to");
}

TEST_F(Doctor, ABrokerThatRefusesTheHub) {
  StartQuietSite();
  hub->Answer("GET /api/bus",
              R"({"name":"bench","daemon":{"state":"up","version":"1.20","waiting_for":null},)"
              R"("broker":{"state":"refused","host":"10.0.0.5","detail":"wrong password"}})");
  Examine();
  ExpectWrong("broker", "the hub does not have the one at 10.0.0.5: wrong password");
}

TEST_F(Doctor, ABusWithoutCards) {
  StartQuietSite();
  hub->Answer("GET /api/cards", R"({"cards":[]})");
  Examine();
  ExpectWrong("cards", "no card is known");
}

TEST_F(Doctor, TellsPeopleInATable) {
  StartQuietSite();
  const Outcome outcome = RunCtl({"--socket", hub->SocketPath(), "doctor", "--wait", "60s"});
  EXPECT_EQ(outcome.status, 0);
  EXPECT_NE(outcome.out.find("\nwell   log           /run/test/qelm.log\n"), std::string::npos)
      << outcome.out;
  EXPECT_NE(outcome.out.find("\n                     -> <InitPollState Action=\"True\"/>, or: "
                             "qelmctl polling on\n"),
            std::string::npos)
      << outcome.out;
  EXPECT_TRUE(outcome.out.ends_with("All is well.\n")) << outcome.out;
}

}  // namespace
