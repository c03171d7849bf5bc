// Each pair NAME.recording and NAME.session in recordings/ is a test: the session's frames are sent
// to a fast replay of the recording, and its replies must come back. A line of a session is
// "> bytes", "< bytes", or "< nothing" where the recorded card side was silent.
#include <fstream>
#include <sstream>

#include "BusProcess.h"
#include "bus/Replayer.h"

namespace virtualbus {
namespace {

class Replay : public BusTest {
 protected:
  void Play(const std::filesystem::path& session) {
    std::ifstream file(session);
    for (std::string line; std::getline(file, line);) {
      if (line.empty() || line[0] == '#') continue;
      const std::string rest = line.substr(2);
      if (line[0] == '>') {
        host->Send(*ParseBytes(SplitWords(rest)));
      } else if (rest != "nothing") {
        EXPECT_EQ(Hex(host->ReceiveReply()), rest) << session;
      }
    }
    ExpectNothingMore();
  }
  void ExpectNothingMore() { EXPECT_EQ(Ask({0xEE}), Bytes{0x4E}) << "never recorded: refused"; }
};

TEST_F(Replay, GivesEverySessionItsReplies) {
  int sessions = 0;
  for (const auto& entry : std::filesystem::directory_iterator(RECORDINGS)) {
    if (entry.path().extension() != ".session") continue;
    std::filesystem::path recording = entry.path();
    recording.replace_extension(".recording");
    Start({"--replay", recording.string(), "--fast"});
    Play(entry.path());
    bus.reset();
    ++sessions;
  }
  EXPECT_GE(sessions, 3);
}

TEST_F(Replay, GivesBackWhatWasRecorded) {
  const std::string file = folder.Path("recording");
  std::vector<Bytes> questions;
  for (int i = 0; i < 3; ++i) questions.push_back({0x20, 0x03, 0x02});
  questions.push_back({0x30});
  questions.push_back({0x10, 0x05, 0x02, 0x12, 0x34});
  questions.push_back({0x20, 0x03, 0x02});

  Start({"--record", file});
  std::vector<Bytes> replies;
  for (const Bytes& question : questions) {
    replies.push_back(Ask(question));
    Order("set 3 0 " + std::to_string(10 + replies.size()));
  }
  bus.reset();

  Start({"--replay", file, "--fast"});
  for (size_t i = 0; i < questions.size(); ++i) EXPECT_EQ(Ask(questions[i]), replies[i]) << i;
  EXPECT_EQ(Ask({0x20, 0x03, 0x02}), replies.back()) << "the last one stays";
}

TEST_F(Replay, ARecordingIsALinePerFrameWithItsTime) {
  const std::string file = folder.Path("recording");
  Start({"--record", file, "--card", "3=digital-input"});
  Ask({0x20, 0x03, 0x02});
  Order("drop next 1");
  host->Send({0x30});
  Order("wait frame 30");
  Order("quit");
  bus->WaitForExit();
  std::istringstream recording(ReadFile(file));
  std::string lines;
  double before = 0.0;
  for (std::string line; std::getline(recording, line);) {
    if (line[0] == '#') continue;
    const double seconds = std::stod(line.substr(0, 12));
    EXPECT_GE(seconds, before);
    before = seconds;
    lines += line.substr(13) + "\n";
  }
  EXPECT_NE(lines.find("> 20 03 02\n< 21 03 00 00\n> 30\n# frame lost: dropped\n"),
            std::string::npos)
      << lines;
}

TEST_F(Replay, ARecordingIsNeverWrittenOver) {
  const std::string file = folder.Write("recording", "mine");
  Program program(folder, {"--record", file});
  EXPECT_EQ(program.WaitForExit(), 2);
  EXPECT_EQ(program.Errors(), "qelm-bus: cannot record to " + file + ": File exists\n");
  EXPECT_EQ(ReadFile(file), "mine");
}

class Replaying : public testing::Test {
 protected:
  void Load(const std::string& text, bool fast) {
    ASSERT_EQ(replayer.Load(folder.Write("recording", text), fast).Text(), "");
  }
  std::string AskAt(double seconds, const Bytes& request) {
    const auto time =
        start + std::chrono::duration_cast<Clock::duration>(std::chrono::duration<double>(seconds));
    const auto reply = replayer.Answer(request, time);
    return reply ? Hex(*reply) : "silence";
  }

  TempDir folder;
  Replayer replayer;
  const Time start = Clock::now();
};

const std::string kRecording =
    "# a comment\n"
    "   10.000 > 20 03 02\n"
    "   10.001 < 21 03 00 00\n"
    "   10.500 > 20 03 02\n"
    "   10.501 < 21 03 00 00\n"
    "   10.900 # card 3 pressed 06\n"
    "   11.000 > 20 03 02\n"
    "   11.001 < 21 03 40 00  # late\n"
    "   11.100 > 20 03 02\n"
    "   11.101 < 21 03 00 00\n"
    "   12.000 > 30\n";

TEST_F(Replaying, AtTheRecordedPaceAReplyStaysUntilTheNextIsDue) {
  Load(kRecording, false);
  EXPECT_EQ(AskAt(0.0, {0x20, 0x03, 0x02}), "21 03 00 00");
  EXPECT_EQ(AskAt(0.9, {0x20, 0x03, 0x02}), "21 03 00 00");
  EXPECT_EQ(AskAt(1.05, {0x20, 0x03, 0x02}), "21 03 40 00");
  EXPECT_EQ(AskAt(1.06, {0x20, 0x03, 0x02}), "21 03 40 00");
  EXPECT_EQ(AskAt(1.15, {0x20, 0x03, 0x02}), "21 03 00 00");
  EXPECT_EQ(AskAt(9.0, {0x20, 0x03, 0x02}), "21 03 00 00");
}

TEST_F(Replaying, AHostThatAsksLateMissesNoChange) {
  Load(kRecording, false);
  EXPECT_EQ(AskAt(0.0, {0x20, 0x03, 0x02}), "21 03 00 00");
  EXPECT_EQ(AskAt(5.0, {0x20, 0x03, 0x02}), "21 03 40 00");
  EXPECT_EQ(AskAt(5.0, {0x20, 0x03, 0x02}), "21 03 00 00");
}

TEST_F(Replaying, FastGivesOneReplyToEachQuestion) {
  Load(kRecording, true);
  for (const char* reply :
       {"21 03 00 00", "21 03 00 00", "21 03 40 00", "21 03 00 00", "21 03 00 00"}) {
    EXPECT_EQ(AskAt(0.0, {0x20, 0x03, 0x02}), reply);
  }
}

TEST_F(Replaying, WhatWasNotAnsweredStaysSilentAndWhatWasNotAskedIsRefused) {
  Load(kRecording, true);
  EXPECT_EQ(AskAt(0.0, {0x30}), "silence");
  EXPECT_EQ(AskAt(0.0, {0x99}), "4E");
}

TEST_F(Replaying, AFaultIsNamedWithItsLine) {
  const std::string meant = "a line is a time, > or <, and bytes";
  const std::pair<const char*, std::string> bad[] = {
      {"", ": holds no frame"},
      {"# nothing\n", ": holds no frame"},
      {"1.0 < 06\n", ":1: a reply before any frame"},
      {"\nnonsense\n", ":2: " + meant},
      {"1.0 > \n", ":1: " + meant},
      {"1.0 > 1G\n", ":1: " + meant},
      {"1.0 = 10\n", ":1: " + meant},
      {"x > 10\n", ":1: " + meant},
      {"1.0\n", ":1: " + meant},
  };
  for (const auto& [text, problem] : bad) {
    const std::string path = folder.Write("recording", text);
    EXPECT_EQ(Replayer().Load(path, true).Text(), path + problem) << text;
  }
  EXPECT_EQ(Replayer().Load(folder.Path(""), true).Text(), folder.Path("") + ": cannot be read");
}

}  // namespace
}  // namespace virtualbus
