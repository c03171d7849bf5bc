#include "runtime/Logger.h"

#include <gtest/gtest.h>

#include <ctime>
#include <filesystem>

#include "kit/Helper.h"
#include "support/LastLine.h"
#include "support/TempLog.h"

namespace {

using Lines = std::vector<std::string>;

long OpenDescriptors() {
  const std::filesystem::directory_iterator folder("/proc/self/fd");
  return std::distance(begin(folder), end(folder));
}

// 19 characters of time, " [INF] ", the text and the line's end.
std::string TextForLine(std::size_t length) { return std::string(length - 19 - 7 - 1, 'x'); }

// Every digit as 0.
std::string Shape(std::string line) {
  for (char& c : line)
    if (c >= '0' && c <= '9') c = '0';
  return line;
}

}  // namespace

TEST(Logger, DefaultsToNoFileAndEveryLevel) {
  LOGGER logger;
  EXPECT_EQ(logger.LogLevel, 0);
  EXPECT_EQ(logger.LogFile, "");
  logger.LOG("INF", "nowhere", 1);
}

TEST(Logger, WritesTimeTagAndText) {
  const TempLog log;
  log.Logger().LOG("INF", "signal 15 on CAE interface", 1);
  log.Logger().LOG("A B", "", 1);
  const Lines lines = log.WholeLines();
  ASSERT_EQ(lines.size(), 2U);
  EXPECT_EQ(Shape(lines[0]), "0000-00-00 00:00:00 [INF] signal 00 on CAE interface");
  EXPECT_EQ(Shape(lines[1]), "0000-00-00 00:00:00 [A B] ");
}

TEST(Logger, UsesLocalTime) {
  const TempLog log;
  setenv("TZ", "TST-13:45", 1);  // 13 hours 45 minutes ahead
  tzset();
  const time_t before = time(nullptr);
  log.Logger().LOG("INF", "text", 1);
  const time_t after = time(nullptr);
  unsetenv("TZ");
  tzset();

  const auto shown = [](time_t utc) {
    const time_t ahead = utc + 13 * 3600 + 45 * 60;
    char text[32] = {};
    tm fields{};
    std::strftime(text, sizeof text, "%Y-%m-%d %H:%M:%S", gmtime_r(&ahead, &fields));
    return std::string(text);
  };
  const std::string line = log.WholeLines().at(0).substr(0, 19);
  EXPECT_GE(line, shown(before));
  EXPECT_LE(line, shown(after));
}

TEST(Logger, WritesFromItsLevelOn) {
  struct Case {
    int threshold;
    int level;
    bool is_written;
  };
  for (const Case& c : {Case{0, 1, true}, Case{1, 1, true}, Case{2, 1, false}, Case{2, 2, true},
                        Case{-1, 0, true}, Case{0, -1, false}}) {
    const TempLog log;
    LOGGER logger = log.Logger();
    logger.LogLevel = c.threshold;
    logger.LOG("INF", "text", c.level);
    EXPECT_EQ(log.Has("[INF] text"), c.is_written) << c.threshold << " " << c.level;
  }
}

TEST(Logger, AFilteredEventLeavesItsFileOpen) {
  const TempLog log;
  LOGGER logger = log.Logger();
  logger.LogLevel = 2;
  const long before = OpenDescriptors();
  for (int i = 0; i < 3; ++i) logger.LOG("INF", "text", 1);
  EXPECT_EQ(OpenDescriptors(), before + 3);
  EXPECT_TRUE(std::filesystem::exists(log.Path()));
}

TEST(Logger, AWrittenEventLeavesNoFileOpen) {
  const TempLog log;
  const long before = OpenDescriptors();
  log.Logger().LOG("INF", "text", 1);
  EXPECT_EQ(OpenDescriptors(), before);
}

TEST(Logger, TakesALineOf999Characters) {
  const TempLog log;
  log.Logger().LOG("INF", TextForLine(999), 1);
  ASSERT_EQ(log.WholeLines().size(), 1U);
  EXPECT_EQ(log.WholeLines()[0].size(), 998U);  // and the line's end
}

TEST(LoggerDeathTest, ALineOfAThousandCharactersEndsTheProcess) {
  const TempLog log;
  LOGGER logger = log.Logger();
  EXPECT_EXIT(logger.LOG("INF", TextForLine(1000), 1), testing::KilledBySignal(SIGABRT),
              LastLine("999 characters"));
}

TEST(Logger, ALongLineThatIsFilteredEndsNothing) {
  const TempLog log;
  LOGGER logger = log.Logger();
  logger.LogLevel = 2;
  logger.LOG("INF", TextForLine(5000), 1);
  logger.LogFile = "";
  logger.LOG("INF", TextForLine(5000), 2);
}

TEST(Logger, CreatesADeletedFileAfresh) {
  const TempLog log;
  LOGGER logger = log.Logger();
  logger.LOG("INF", "first", 1);
  std::filesystem::remove(log.Path());
  logger.LOG("INF", "second", 1);
  EXPECT_EQ(log.Lines(), Lines{"[INF] second"});
}

TEST(Logger, DropsEventsWhereTheFileCannotBeOpened) {
  const TempDir dir;
  LOGGER logger;
  logger.LogFile = dir.Path("missing/log");
  logger.LOG("ERR", "text", 1);
  EXPECT_FALSE(std::filesystem::exists(dir.Path("missing")));
}

TEST(Logger, ACopyKeepsLevelAndFileOfItsTime) {
  LOGGER logger;
  logger.LogLevel = 3;
  logger.LogFile = "a";
  const LOGGER copy(logger);
  LOGGER assigned;
  assigned = logger;
  logger.LogLevel = 4;
  logger.LogFile = "b";
  EXPECT_EQ(copy.LogLevel, 3);
  EXPECT_EQ(copy.LogFile, "a");
  EXPECT_EQ(assigned.LogLevel, 3);
  EXPECT_EQ(assigned.LogFile, "a");
}

TEST(Logger, KeepsLinesOfDifferentCopiesWhole) {
  const TempLog log;
  const auto write = [&log](const std::string& text) {
    LOGGER logger = log.Logger();
    for (int i = 0; i < 200; ++i) logger.LOG("INF", text, 1);
  };
  Helper other([&] { write("other"); });
  write("here");
  other.Join();
  EXPECT_EQ(log.Count("[INF] other"), 200);
  EXPECT_EQ(log.Count("[INF] here"), 200);
  EXPECT_EQ(log.Lines().size(), 400U);
}
