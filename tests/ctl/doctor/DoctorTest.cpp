// What is between the daemon's configuration and its ports.
#include "DoctorTest.h"

#include <signal.h>

#include <cstdlib>
#include <filesystem>

#include "Impostor.h"
#include "kit/Listener.h"

namespace {

constexpr char kLogFolder[] = "/run/test/log";

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
  ReplaceInConfiguration("AutoDiscover", "Autodiscover");
  StartBus();
  StartDaemon();
  Examine();
  ExpectWrong("configuration", "unknown element \\\"Autodiscover\\\"");
  ExpectWrong("configuration", "write \\\"AutoDiscover\\\"");
}

TEST_F(Doctor, AMisspeltAttributeThatTheDaemonPassesOver) {
  ReplaceInConfiguration("AutoDiscover Action", "AutoDiscover action");
  StartBus();
  StartDaemon();
  Examine();
  ExpectWrong("configuration", "unknown attribute \\\"action\\\" of AutoDiscover");
  ExpectWrong("configuration", "write \\\"Action\\\"");
}

TEST_F(Doctor, APortBelow1025) {
  ReplaceInConfiguration("5002", "502");
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

TEST_F(Doctor, ALogThatTheDaemonMayNotWrite) {
  AddDaemonsUser();
  WriteFile(kLogFile, "");
  std::filesystem::permissions(kLogFile, std::filesystem::perms::owner_read);
  Examine();
  ExpectWrong("log", "the daemon, which runs as qelm, may not write /run/test/qelm.log");
  ExpectWrong("log", "chown qelm /run/test/qelm.log");
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

TEST_F(Doctor, AnAdapterThatTheDaemonMayNotOpen) {
  AddDaemonsUser();
  StartBus();
  Examine();
  ExpectWrong("adapter", "/dev/ttyUSB0: the daemon, which runs as qelm, may not open it");
  ExpectWrong("adapter", "adduser qelm ");
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

TEST_F(Doctor, APortThatTheDaemonDoesNotHave) {
  StartQuietSite();
  ReplaceInConfiguration("5002", "5009");  // it has read it before
  Examine();
  ExpectWrong("ports", "IO (5009) is closed, though the daemon runs");
}

TEST_F(Doctor, ADaemonThatSaysSomethingElse) {
  const Impostor other("qelm", [] {
    Listener listener(kCae);
    Stream client = listener.Accept();
    client.Send("220 mail.example ESMTP\r\n");
    pause();
  });
  Examine("2s");
  ExpectWrong("ports", "CAE (5001) says \\\"220 mail.example ESMTP");
}

TEST_F(Doctor, AClockThatWasNeverSet) {
  Examine("2s",
          {{"LD_PRELOAD", OLD_CLOCK}, {"TZ", "UTC"}, {"ASAN_OPTIONS", "verify_asan_link_order=0"}});
  ExpectWrong("clock", "it is 2001-09-09");
}

TEST_F(Doctor, ADaemonThatHangs) {
  StartQuietSite();
  daemon.Kill(SIGSTOP);
  Examine("2s");
  daemon.Kill(SIGCONT);
  ExpectWrong("ports", "CAE (5001) takes a connection and does not greet");
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
