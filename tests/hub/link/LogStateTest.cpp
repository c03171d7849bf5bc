#include "link/LogState.h"

#include <gtest/gtest.h>

namespace hub::link {
namespace {

using namespace std::chrono_literals;
using model::AdapterState;

class LogStateTest : public testing::Test {
 protected:
  void Old(const std::string& line) { log.TakeOld(protocol::ParseLogLine("2026-11-21 " + line)); }
  void New(const std::string& line) { log.Take(protocol::ParseLogLine("2026-11-21 " + line)); }

  LogState log;
};

TEST_F(LogStateTest, BytesThatAreNoTextAreNoVersion) {
  New("12:00:01 [INF] hardware found on /dev/ttyUSB0 version: \x03");
  EXPECT_EQ(log.AdapterNow().state, AdapterState::kUp);
  EXPECT_EQ(log.AdapterNow().version, std::nullopt);
}

TEST_F(LogStateTest, TellsWhereTheAdapterIs) {
  EXPECT_EQ(log.AdapterNow().state, AdapterState::kUnknown);
  New("12:00:00 [INF] qelm is started");
  EXPECT_EQ(log.AdapterNow().state, AdapterState::kDown);
  New("12:00:01 [INF] hardware found on /dev/ttyUSB0 version: v1.2");
  EXPECT_EQ(log.AdapterNow().state, AdapterState::kUp);
  EXPECT_EQ(log.AdapterNow().device, "/dev/ttyUSB0");
  EXPECT_EQ(log.AdapterNow().version, "v1.2");
  New("12:00:02 [INF] comm timeout /dev/ttyUSB0");
  EXPECT_EQ(log.AdapterNow().state, AdapterState::kDown);
  New("12:00:03 [INF] qelm is stopped by SIGTERM or SIGINT");
  EXPECT_EQ(log.AdapterNow().state, AdapterState::kUnknown);
}

TEST_F(LogStateTest, TellsThePauseOfTheConfiguration) {
  Old("12:00:00 [INF] Initparam Speed (ThreadDelay): 2525");
  EXPECT_EQ(log.Pause(), 2525us);
}

TEST_F(LogStateTest, AStartAndADiscoveryBeginAnew) {
  EXPECT_FALSE(log.HasBegunAnew());
  New("12:00:00 [INF] qelm is started");
  EXPECT_TRUE(log.HasBegunAnew());
  log.NoteRestored();
  EXPECT_FALSE(log.HasBegunAnew());
  New("12:00:01 [INF] hardware found on /dev/ttyUSB0 version: v1.2");
  EXPECT_TRUE(log.HasBegunAnew());
}

TEST_F(LogStateTest, AnEarlierHubHasRestoredWhatBeganLongBeforeItLeft) {
  Old("12:00:00 [INF] hardware found on /dev/ttyUSB0 version: v1.2");
  Old("12:00:30 [INF] connection is closed by client on IO interface");
  EXPECT_FALSE(log.HasBegunAnew());
}

TEST_F(LogStateTest, AnEarlierHubThatLeftAtOnceHasNot) {
  Old("12:00:00 [INF] hardware found on /dev/ttyUSB0 version: v1.2");
  Old("12:00:02 [INF] connection is closed by client on IO interface");
  EXPECT_TRUE(log.HasBegunAnew());
}

TEST_F(LogStateTest, AnEarlierHubThatCameLateAndLeftAtOnceHasNot) {
  Old("12:00:00 [INF] hardware found on /dev/ttyUSB0 version: v1.2");
  Old("12:00:20 [INF] client is connected on IO interface from 127.0.0.1:34835");
  Old("12:00:21 [INF] connection is closed by client on IO interface");
  EXPECT_TRUE(log.HasBegunAnew());
}

TEST_F(LogStateTest, AnEarlierHubThatLeftMayHaveTouchedTheRecord) {
  Old("12:00:00 [INF] hardware found on /dev/ttyUSB0 version: v1.2");
  EXPECT_TRUE(log.IsRecordUntouched());
  Old("12:00:02 [INF] connection is closed by client on IO interface");
  EXPECT_FALSE(log.IsRecordUntouched());
  Old("12:00:05 [INF] hardware found on /dev/ttyUSB0 version: v1.2");
  EXPECT_TRUE(log.IsRecordUntouched());
}

TEST_F(LogStateTest, ADaemonThatBeganWhileNoHubWasThereBeganAnew) {
  Old("12:00:30 [INF] connection is closed by client on IO interface");
  Old("12:01:00 [INF] qelm is started");
  EXPECT_TRUE(log.HasBegunAnew());
}

}  // namespace
}  // namespace hub::link
