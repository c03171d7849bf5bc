// The configuration file, seen through the start log, the ports and the replies.
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <filesystem>
#include <sstream>

#include "DaemonTest.h"

namespace {

class Configuration : public DaemonTest {
 protected:
  void ExpectStartLine(const ConfigFile& config, const std::string& text,
                       Place place = Place::current()) {
    std::filesystem::remove(kLogFile);
    WriteConfig(config);
    StartDaemon({}, place);
    ExpectLog("INF", text, 1, place);
    StopDaemon(place);
  }

  // The start ends with status 0, and the log holds this error and nothing of a port.
  void ExpectRefused(const std::string& error, Place place = Place::current()) {
    EXPECT_EQ(RunToItsEnd(place), 0);
    const std::vector<std::string> lines{"[INF] qelm is started", "[ERR] " + error,
                                         "[INF] qelm is stopped with error"};
    if (LogLines() != lines) FAIL_AT(place) << "the log is\n" << ReadFile(kLogFile);
    if (!Refuses(kCae) || !Refuses(kIo)) FAIL_AT(place) << "a port is open";
  }

  static void WriteInterfaces(const std::string& entries) {
    WriteConfigText("<QELMConfig><Debuglog File='/run/test/qelm.log' Loglevel='1'/><Interfaces>" +
                    entries + "</Interfaces></QELMConfig>");
  }
};

// The system log's end of /dev/log.
class SystemLog {
 public:
  SystemLog() : socket_(socket(AF_UNIX, SOCK_DGRAM | SOCK_CLOEXEC, 0)) {
    sockaddr_un address{AF_UNIX, "/dev/log"};
    bind(socket_, reinterpret_cast<sockaddr*>(&address), sizeof address);
    const timeval bound{kPatience.count(), 0};
    setsockopt(socket_, SOL_SOCKET, SO_RCVTIMEO, &bound, sizeof bound);
  }
  ~SystemLog() {
    close(socket_);
    unlink("/dev/log");
  }
  std::string Receive() const {
    char buffer[1024];
    const ssize_t count = recv(socket_, buffer, sizeof buffer, 0);
    return count > 0 ? std::string(buffer, static_cast<std::size_t>(count)) : "";
  }
  bool IsEmpty() const {
    char byte;
    return recv(socket_, &byte, 1, MSG_DONTWAIT) < 0;
  }

 private:
  int socket_;
};

int ListeningSockets() {
  std::istringstream table(ReadFile("/proc/net/tcp"));
  int count = 0;
  for (std::string line; std::getline(table, line);) {
    count += line.find(" 00000000:0000 0A ") != std::string::npos ? 1 : 0;
  }
  return count;
}

}  // namespace

TEST_F(Configuration, SpeedBecomesTheLoopDelay) {
  ExpectStartLine({.percent = "1"}, "Initparam Speed (ThreadDelay): 5000");
  ExpectStartLine({.percent = "2"}, "Initparam Speed (ThreadDelay): 4949");
  ExpectStartLine({.percent = "50"}, "Initparam Speed (ThreadDelay): 2525");
  ExpectStartLine({.percent = "99"}, "Initparam Speed (ThreadDelay): 51");
  ExpectStartLine({.percent = "100"}, "Initparam Speed (ThreadDelay): 1");
  ExpectStartLine({.percent = "0"}, "Initparam Speed (ThreadDelay): 5050");
  ExpectStartLine({.percent = "abc"}, "Initparam Speed (ThreadDelay): 5050");
  ExpectStartLine({.percent = " 50 percent"}, "Initparam Speed (ThreadDelay): 2525");
}

TEST_F(Configuration, SpeedAboveAHundredServesWithoutAPause) {
  WriteConfig({.percent = "200"});
  StartDaemon();
  ExpectLog("INF", "Initparam Speed (ThreadDelay): -5048");
  cae = Connect(kCae);
  ExpectAnswer();
}

TEST_F(Configuration, OnlyThreeSpellingsAreTrue) {
  ExpectStartLine({.discover = "TRUE"}, "Initparam Autodiscover: TRUE");
  ExpectStartLine({.discover = "True"}, "Initparam Autodiscover: TRUE");
  ExpectStartLine({.poll = "true"}, "Initparam Enablepoll: TRUE");
  ExpectStartLine({.poll = "Yes"}, "Initparam Enablepoll: FALSE");
  ExpectStartLine({.poll = "1"}, "Initparam Enablepoll: FALSE");
  ExpectStartLine({.discover = "tRUE"}, "Initparam Autodiscover: FALSE");
}

TEST_F(Configuration, MissingFileGoesToTheSystemLog) {
  const SystemLog system_log;
  std::filesystem::remove(kConfigPath);
  EXPECT_EQ(RunToItsEnd(), 0);
  const std::string message = system_log.Receive();
  EXPECT_TRUE(message.starts_with("<13>")) << message;
  EXPECT_TRUE(message.ends_with("Unable to start by user " + std::to_string(getuid()) +
                                ", because unable to load config, or unable to parse XML file!"))
      << message;
  EXPECT_FALSE(std::filesystem::exists(kLogFile));
  EXPECT_TRUE(Refuses(kCae));
}

TEST_F(Configuration, MalformedFileGoesToTheSystemLog) {
  const SystemLog system_log;
  WriteConfigText("<QELMConfig><Debuglog File='/run/test/qelm.log'></QELMConfig>");
  EXPECT_EQ(RunToItsEnd(), 0);
  EXPECT_NE(system_log.Receive().find("unable to parse XML file!"), std::string::npos);
  EXPECT_FALSE(std::filesystem::exists(kLogFile));
}

TEST_F(Configuration, PortOf1024IsRefusedByTheNameBeforeIt) {
  const SystemLog system_log;
  WriteInterfaces("<I Name='IO' Port='1024'/>");
  ExpectRefused("IO interface port number is less than 1025");
  EXPECT_TRUE(system_log.IsEmpty());
}

TEST_F(Configuration, NameAfterThePortIsNotInTheError) {
  WriteInterfaces("<I Port='1024' Name='IO'/>");
  ExpectRefused(" interface port number is less than 1025");
}

TEST_F(Configuration, PortsOfUnknownInterfacesAreCheckedToo) {
  WriteInterfaces("<I Name='CAE' Port='5001'/><I Name='XYZ' Port='-7'/>");
  ExpectRefused("XYZ interface port number is less than 1025");
}

TEST_F(Configuration, PortThatIsNoNumberIsRefused) {
  WriteInterfaces("<I Name='MON' Port='none'/>");
  ExpectRefused("MON interface port number is less than 1025");
}

TEST_F(Configuration, LongNameIsCutInTheError) {
  WriteInterfaces("<I Name='" + std::string(300, 'N') + "' Port='80'/>");
  EXPECT_EQ(RunToItsEnd(), 0);
  ASSERT_EQ(LogLines().size(), 3U);
  EXPECT_TRUE(LogLines()[1].starts_with("[ERR] NNNNNNNN")) << LogLines()[1];
  EXPECT_LE(LogLines()[1].size(), 6U + 99U);
}

TEST_F(Configuration, LogSettingsAfterThePortErrorComeTooLate) {
  WriteConfigText(
      "<QELMConfig><Interfaces><I Name='IO' Port='1'/></Interfaces>"
      "<Debuglog File='/run/test/qelm.log' Loglevel='1'/></QELMConfig>");
  EXPECT_EQ(RunToItsEnd(), 0);
  EXPECT_FALSE(std::filesystem::exists(kLogFile));
}

TEST_F(Configuration, OtherDocumentElementLeavesAllDefaults) {
  WriteConfigText("<Other><Debuglog File='/run/test/qelm.log'/></Other>");
  StartDaemon();
  EXPECT_TRUE(WaitUntil([] { return ListeningSockets() == 3; }));
  EXPECT_FALSE(std::filesystem::exists(kLogFile));
  ExpectAlive();
}

TEST_F(Configuration, InterfaceNamesAreCaseSensitive) {
  WriteInterfaces("<I Name='io' Port='5002'/><I Name='CAE' Port='5001'/>");
  StartDaemon();
  ExpectLog("INF", "CAE interface listening on port 5001");
  ExpectLog("INF", " interface listening on port 0", 2);
  EXPECT_TRUE(Refuses(kIo));
}

TEST_F(Configuration, ElementNamesOfInterfacesDoNotMatter) {
  WriteInterfaces("<A Port='5001' Name='CAE'/><B x='1' Name='IO' Port='5002'/>");
  StartDaemon();
  ExpectLog("INF", "CAE interface listening on port 5001");
  ExpectLog("INF", "IO interface listening on port 5002");
}

TEST_F(Configuration, LaterEntriesReplaceEarlierOnes) {
  WriteInterfaces("<I Name='CAE' Port='6001'/><I Name='CAE' Port='5001'/>");
  StartDaemon();
  ExpectLog("INF", "CAE interface listening on port 5001");
  EXPECT_TRUE(Refuses(6001));
}

TEST_F(Configuration, FifthInterfaceIsIgnored) {
  WriteInterfaces(
      "<I Name='CAE' Port='5001'/><I Name='IO' Port='5002'/><I/>"
      "<I Name='x' Port='2000'/><I Name='CAE' Port='1'/>");
  StartDaemon();
  ExpectLog("INF", "CAE interface listening on port 5001");
}

TEST_F(Configuration, LastElementWins) {
  WriteConfigText(
      "<QELMConfig><Debuglog File='/run/test/first.log' Loglevel='5'/>"
      "<debuglog File='/run/test/second.log'/><Speed Percent='1'/>"
      "<Debuglog Loglevel='0' File='/run/test/qelm.log'/><Speed Percent='50'/>"
      "</QELMConfig>");
  StartDaemon();
  ExpectLog("INF", "Initparam Speed (ThreadDelay): 2525");
  EXPECT_FALSE(std::filesystem::exists("/run/test/first.log"));
  EXPECT_FALSE(std::filesystem::exists("/run/test/second.log"));
}

TEST_F(Configuration, SpeedAfterTheInterfacesDoesNotReachThem) {
  WriteConfigText(
      "<QELMConfig><Debuglog File='/run/test/qelm.log'/><Interfaces>"
      "<I Name='CAE' Port='5001' InpSeparator='\\r\\n' OutSeparator='\\r\\n'/>"
      "</Interfaces><Speed Percent='100'/></QELMConfig>");
  StartDaemon();
  ExpectLog("INF", "Initparam Speed (ThreadDelay): 1");
  cae = Connect(kCae);
  const auto begin = std::chrono::steady_clock::now();
  cae.Send("HELP\r\n");
  cae.ReadUntil(">\r\n\r");
  // 70 items, one a pass of 5 ms
  EXPECT_GE(std::chrono::steady_clock::now() - begin, std::chrono::milliseconds(345));
}

TEST_F(Configuration, SeparatorsAreDecoded) {
  WriteConfig({.cae_input = ";", .cae_output = R"(\n\r\t)"});
  StartDaemon();
  cae = Connect(kCae);
  cae.Send("DRVVER;");
  cae.ExpectBytes("CIA: DRIVER VERSION 1.20\n\r\\t\r>\n\r\\t\r");
}
