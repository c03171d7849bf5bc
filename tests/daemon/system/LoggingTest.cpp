// The log file: its lines, its level, and what becomes of a file that moves.
#include <sys/stat.h>

#include <algorithm>
#include <cctype>
#include <ctime>
#include <filesystem>
#include <sstream>

#include "DaemonTest.h"

namespace {

namespace fs = std::filesystem;

class Logging : public DaemonTest {
 protected:
  void StartSilent(const std::string& log_file) {
    WriteConfig({.log_file = log_file});
    StartDaemon();
    cae = Connect(kCae);
    ExpectAnswer();
  }

  long OpenLogs() {
    const auto targets = daemon.Descriptors();
    return std::count(targets.begin(), targets.end(), kLogFile);
  }
};

std::string Stamp(std::time_t time) {
  std::tm parts{};
  gmtime_r(&time, &parts);
  char text[32];
  std::strftime(text, sizeof text, "%Y-%m-%d %H:%M:%S", &parts);
  return text;
}

// True when the line begins as the form does: 0 stands for any digit, x for any
// character but a blank.
bool Fits(const std::string& line, const std::string& form) {
  if (line.size() < form.size()) return false;
  return std::equal(form.begin(), form.end(), line.begin(), [](char expected, char seen) {
    if (expected == '0') return std::isdigit(static_cast<unsigned char>(seen)) != 0;
    return expected == 'x' ? seen != ' ' : expected == seen;
  });
}

}  // namespace

TEST_F(Logging, EveryLineHasTimeTagAndText) {
  StartDaemon();
  ExpectLog("INF", "MON interface listening on port 5003");
  std::istringstream log(ReadFile(kLogFile));
  for (std::string line; std::getline(log, line) && !log.eof();) {
    EXPECT_TRUE(Fits(line, "0000-00-00 00:00:00 [INF] x") ||
                Fits(line, "0000-00-00 00:00:00 [ERR] x"))
        << line;
  }
}

TEST_F(Logging, TimesAreLocal) {
  constexpr int kOffset = 5 * 3600 + 1800;
  const std::string before = Stamp(std::time(nullptr) + kOffset);
  StartDaemon({.environment = {{"TZ", "XYZ-5:30"}}});
  ExpectLog("INF", "qelm is started");
  const std::string stamp = ReadFile(kLogFile).substr(0, before.size());
  EXPECT_LE(before, stamp);
  EXPECT_LE(stamp, Stamp(std::time(nullptr) + kOffset));
}

TEST_F(Logging, LevelZeroWritesEverything) {
  WriteConfig({.log_level = "0"});
  StartDaemon();
  ExpectLog("INF", "MON interface listening on port 5003");
}

TEST_F(Logging, LevelTwoWritesNothingAndLeavesTheFileOpenAMessage) {
  WriteConfig({.log_level = "2"});
  StartDaemon();
  cae = Connect(kCae);
  ExpectAnswer();
  EXPECT_TRUE(fs::exists(kLogFile));
  EXPECT_EQ(ReadFile(kLogFile), "");
  // started, three parameters, CAE listening, waiting and connected
  EXPECT_GE(OpenLogs(), 7);
}

TEST_F(Logging, WrittenMessagesLeaveNoFileOpen) {
  StartDaemon();
  cae = Connect(kCae);
  ExpectLog("ERR", "ttyUSB devices couldn't be found", 3);
  EXPECT_TRUE(WaitUntil([&] { return OpenLogs() == 0; }));
}

TEST_F(Logging, MovedFileIsCreatedAfresh) {
  StartDaemon();
  ExpectLog("ERR", "ttyUSB devices couldn't be found");
  fs::rename(kLogFile, "/run/test/old.log");
  ExpectLog("ERR", "ttyUSB devices couldn't be found");
  EXPECT_EQ(CountLogged("[INF] qelm is started"), 0);
}

TEST_F(Logging, LinesAreAppendedToAnOldFile) {
  WriteFile(kLogFile, "2001-02-03 04:05:06 [INF] an old line\n");
  StartDaemon();
  ExpectLog("INF", "qelm is started");
  EXPECT_EQ(LogLines()[0], "[INF] an old line");
}

TEST_F(Logging, DaemonServesWithoutALogFile) { StartSilent(""); }

TEST_F(Logging, DaemonServesWhenTheLogFolderIsMissing) { StartSilent("/run/test/none/qelm.log"); }

TEST_F(Logging, DaemonServesWhenTheLogIsAFolder) { StartSilent("/run/test"); }
