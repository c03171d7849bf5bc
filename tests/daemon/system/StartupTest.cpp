// The process: launch, pid file, signals, the order of the first log lines.
#include <arpa/inet.h>
#include <fcntl.h>
#include <signal.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <filesystem>

#include "DaemonTest.h"
#include "kit/Proc.h"

namespace {

namespace fs = std::filesystem;

class Startup : public DaemonTest {
 protected:
  // Ends the daemon with a signal that it does not handle.
  void ExpectKilledBy(int signal, Place place = Place::current()) {
    StartDaemon();
    ExpectLog("INF", "qelm is started");
    daemon.Kill(signal);
    const auto status = daemon.WaitForEnd();
    if (!status || !WIFSIGNALED(*status) || WTERMSIG(*status) != signal) {
      FAIL_AT(place) << "wait status " << status.value_or(-1);
    }
  }

  void AwaitFirstLines() {
    for (const char* name : {"CAE", "IO", "MON"}) {
      ExpectLog("INF", std::string(name) + " interface is waiting for incoming connection");
    }
    ExpectLog("INF", "hardware found on /dev/ttyUSB0 version: v1.2");
  }
};

}  // namespace

TEST_F(Startup, LaunchReturnsAndTheDaemonRunsInASessionOfItsOwn) {
  StartDaemon();
  EXPECT_NE(getsid(0), daemon.Pid());
  EXPECT_TRUE(WaitUntil([&] { return getsid(daemon.Pid()) == daemon.Pid(); }));
  ExpectLog("INF", "qelm is started");
  ExpectAlive();
}

TEST_F(Startup, FolderAndStandardDescriptorsStayAsTheyWere) {
  StartDaemon();
  ExpectLog("INF", "qelm is started");
  const std::string proc = ProcPath(daemon.Pid());
  EXPECT_EQ(fs::read_symlink(proc + "cwd"), fs::current_path());
  EXPECT_EQ(fs::read_symlink(proc + "fd/0"), "/dev/null");
  EXPECT_EQ(fs::read_symlink(proc + "fd/1"), kStdout);
  EXPECT_EQ(fs::read_symlink(proc + "fd/2"), kStderr);
}

TEST_F(Startup, PidFileHoldsTheDecimalPidAndNothingElse) {
  WriteFile(kPidFile, "99999999999999999999\nold\n");
  ASSERT_EQ(daemon.Launch({}), 0);
  ASSERT_TRUE(daemon.WaitForPid());
  EXPECT_EQ(ReadFile(kPidFile), std::to_string(daemon.Pid()));
  ExpectLog("INF", "qelm is started");  // signals are caught from here on
  StopDaemon();
  EXPECT_NE(ReadFile(kPidFile), "");
}

TEST_F(Startup, MissingRunFolderEndsTheStartWithStatusOne) {
  fs::remove_all("/run/qelm");
  EXPECT_EQ(RunToItsEnd(), 1);
  EXPECT_EQ(ReadFile(kStdout), "Couldn't open pid file.\n");
  EXPECT_FALSE(fs::exists(kLogFile));
}

TEST_F(Startup, CommandLineIsIgnored) {
  StartDaemon({.arguments = {"--help", "-x", "file"}});
  ExpectLog("INF", "MON interface listening on port 5003");
  EXPECT_EQ(ReadFile(kStdout), "");
}

TEST_F(Startup, FirstLogLinesComeInTheirOrder) {
  adapter.Plug();
  StartDaemon();
  AwaitFirstLines();
  const auto lines = LogLines();
  const std::vector<std::string> first(lines.begin(), lines.begin() + 5);
  EXPECT_EQ(first,
            (std::vector<std::string>{"[INF] qelm is started", "[INF] Initparam Autodiscover: TRUE",
                                      "[INF] Initparam Enablepoll: FALSE",
                                      "[INF] Initparam Speed (ThreadDelay): 1010",
                                      "[INF] CAE interface listening on port 5001"}));
  ExpectLogOrder(
      {"[INF] CAE interface listening on port 5001", "[INF] IO interface listening on port 5002",
       "[INF] MON interface listening on port 5003", "[INF] try to catch hardware on /dev/ttyUSB0",
       "[INF] hardware found on /dev/ttyUSB0 version: v1.2"});
}

TEST_F(Startup, FiveStartsInARowBringEveryThreadUp) {
  adapter.Plug();
  for (int start = 0; start < 5; ++start) {
    fs::remove(kLogFile);
    StartDaemon();
    AwaitFirstLines();
    if (!daemon.Instrumented()) {
      EXPECT_EQ(daemon.Threads(), 5);
    }
    StopDaemon();
  }
}

TEST_F(Startup, SigtermIsLoggedOnEveryInterfaceInOrder) {
  adapter.Plug();
  StartDaemon();
  AwaitFirstLines();
  StopDaemon();
  ExpectLogOrder({"[INF] signal 15 on CAE interface", "[INF] signal 15 on IO interface",
                  "[INF] signal 15 on MON interface", "[INF] signal 15 on serial interface",
                  "[INF] qelm is stopped by SIGTERM or SIGINT"});
  EXPECT_EQ(CountLogged("[INF] qelm is stopped by SIGTERM or SIGINT"), 1);
}

TEST_F(Startup, SigintEndsTheDaemonLikeSigterm) {
  StartDaemon();
  ExpectLog("INF", "MON interface listening on port 5003");
  EXPECT_EQ(daemon.EndBy(SIGINT), 0);
  ExpectLogOrder({"[INF] signal 2 on CAE interface", "[INF] signal 2 on IO interface",
                  "[INF] signal 2 on MON interface", "[INF] signal 2 on serial interface",
                  "[INF] qelm is stopped by SIGTERM or SIGINT"});
}

TEST_F(Startup, SighupKeepsItsDefaultAction) { ExpectKilledBy(SIGHUP); }

TEST_F(Startup, Sigusr1KeepsItsDefaultAction) { ExpectKilledBy(SIGUSR1); }

TEST_F(Startup, NoSignalIsIgnored) {
  StartDaemon();
  ExpectLog("INF", "MON interface listening on port 5003");
  EXPECT_NE(daemon.Proc("status").find("SigIgn:\t0000000000000000"), std::string::npos);
}

TEST_F(Startup, TakenPortDoesNotStopTheOthers) {
  sockaddr_in address{};
  address.sin_family = AF_INET;
  address.sin_port = htons(kIo);
  const int taken = socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
  const int on = 1;
  setsockopt(taken, SOL_SOCKET, SO_REUSEADDR, &on, sizeof on);
  ASSERT_EQ(bind(taken, reinterpret_cast<sockaddr*>(&address), sizeof address), 0);
  ASSERT_EQ(listen(taken, 1), 0);
  StartOnBus();
  ExpectLogOrder(
      {"[INF] CAE interface listening on port 5001", "[ERR] couldn't bind socket forIO interface",
       "[INF] IO interface listening on port 5002", "[INF] MON interface listening on port 5003"});
  ExpectAnswer();
  Connect(kMon);
  close(taken);
}

TEST_F(Startup, WithoutAnAdapterThePortsServeAndTheSearchGoesOn) {
  StartDaemon();
  cae = Connect(kCae);
  ExpectAnswer();
  ExpectLog("ERR", "ttyUSB devices couldn't be found", 3);
}

TEST_F(Startup, EveryDescriptorIsClosedInTheChildren) {
  adapter.Plug();
  StartDaemon({.quick = false});
  AwaitFirstLines();
  std::vector<pid_t> children;
  // A child that is still called like the daemon has not become another program yet.
  const auto three_waits = [&] {
    children = daemon.Children();
    std::erase_if(children,
                  [](pid_t child) { return ReadFile(ProcPath(child, "comm")) == "qelm\n"; });
    return children.size() >= 3;
  };
  ASSERT_TRUE(WaitUntil(three_waits));
  for (pid_t child : children) {
    for (const std::string& target : DescriptorsOf(child)) {
      EXPECT_FALSE(target.starts_with("socket:")) << child;
      EXPECT_FALSE(target.starts_with("/dev/pts")) << child;
    }
  }
}
