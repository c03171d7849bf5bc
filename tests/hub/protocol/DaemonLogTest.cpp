#include "protocol/DaemonLog.h"

#include <gtest/gtest.h>

namespace hub::protocol {
namespace {

struct Said {
  const char* message;
  LogEvent event;
  const char* device;
  const char* version;
};

void PrintTo(const Said& said, std::ostream* out) { *out << said.message; }

class DaemonLog : public testing::TestWithParam<Said> {};

TEST_P(DaemonLog, SaysThis) {
  const Said& said = GetParam();
  const LogLine line = ParseLogLine(std::string("2026-11-21 09:05:07 [INF] ") + said.message);
  EXPECT_EQ(line.event, said.event);
  EXPECT_EQ(line.device, said.device);
  EXPECT_EQ(line.version, said.version);
  EXPECT_EQ(line.text, said.message);
  EXPECT_FALSE(line.is_error);
}

INSTANTIATE_TEST_SUITE_P(
    Messages, DaemonLog,
    testing::Values(
        Said{"qelm is started", LogEvent::kDaemonStarted, "", ""},
        Said{"qelm is stopped by SIGTERM or SIGINT", LogEvent::kDaemonStopped, "", ""},
        Said{"qelm is stopped with error", LogEvent::kDaemonStopped, "", ""},
        Said{"try to catch hardware on /dev/ttyUSB0", LogEvent::kAdapterSearched, "/dev/ttyUSB0",
             ""},
        Said{"hardware found on /dev/ttyUSB0 version: v1.2", LogEvent::kAdapterFound,
             "/dev/ttyUSB0", "v1.2"},
        Said{"hardware found on /dev/ttyUSB0 version: ", LogEvent::kAdapterFound, "/dev/ttyUSB0",
             ""},
        Said{"comm timeout /dev/ttyUSB0", LogEvent::kAdapterLost, "/dev/ttyUSB0", ""},
        Said{"unable to  write to /dev/ttyUSB0", LogEvent::kAdapterLost, "/dev/ttyUSB0", ""},
        Said{"ttyUSB devices couldn't be found", LogEvent::kAdapterMissing, "", ""},
        Said{"unable to  open /dev/ttyUSB1 for hardware communication", LogEvent::kAdapterMissing,
             "/dev/ttyUSB1", ""},
        Said{"Initparam Speed (ThreadDelay): 2525", LogEvent::kPaceSet, "", ""},
        Said{"client is connected on IO interface from 127.0.0.1:34835", LogEvent::kIoCame, "", ""},
        Said{"client is connected on MON interface from 127.0.0.1:34837", LogEvent::kOther, "", ""},
        Said{"connection is closed by client on IO interface", LogEvent::kIoLeft, "", ""},
        Said{"connection is closed by command on IO interface", LogEvent::kIoLeft, "", ""},
        Said{"connection is closed by client on MON interface", LogEvent::kOther, "", ""},
        Said{"signal 15 on CAE interface", LogEvent::kOther, "", ""}));

TEST(DaemonLogLine, ThePauseAndTheTimeAreRead) {
  const LogLine line =
      ParseLogLine("2026-11-21 09:05:07 [INF] Initparam Speed (ThreadDelay): 2525");
  EXPECT_EQ(line.pause, 2525);
  EXPECT_EQ(line.time, "2026-11-21 09:05:07");
}

TEST(DaemonLogLine, TheTagSaysWhetherItIsAnError) {
  EXPECT_TRUE(ParseLogLine("2026-11-21 09:05:07 [ERR] ttyUSB devices couldn't be found").is_error);
}

TEST(DaemonLogLine, ALineOfAnotherFormIsKeptAndMeansNothing) {
  for (const char* text : {"", "qelm is started", "2026-11-21 09:05:07 qelm is started",
                           "2026-11-21 09:05:0x [INF] qelm is started"}) {
    const LogLine line = ParseLogLine(text);
    EXPECT_EQ(line.event, LogEvent::kOther) << text;
    EXPECT_EQ(line.text, text);
  }
}

}  // namespace
}  // namespace hub::protocol
