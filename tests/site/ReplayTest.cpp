// Each pair NAME.recording and NAME.transcript in sessions/ is a test: the recording
// plays the cards, the transcript is what is said on the ports. Lines of a transcript:
//   IO> a5b1dFB                sent, its line ending added
//   IO< a3b0d40                must come next on this port
//   bus> 10 05 02 FF FB        must come to the adapter
//   log [INF] comm timeout     must be logged, from here on in this order
#include <algorithm>
#include <filesystem>
#include <fstream>
#include <map>
#include <sstream>

#include "SiteTest.h"

namespace {

namespace fs = std::filesystem;

std::vector<std::string> SessionNames() {
  std::vector<std::string> names;
  for (const auto& entry : fs::directory_iterator(SESSIONS)) {
    if (entry.path().extension() == ".transcript") names.push_back(entry.path().stem());
  }
  std::sort(names.begin(), names.end());
  return names;
}

// Cards in the first discovery reply of a recording.
std::size_t CountRecordedCards(const std::string& path) {
  std::istringstream recording(ReadFile(path));
  for (std::string line; std::getline(recording, line);) {
    const std::size_t reply = line.find("< 31 ");
    if (reply == std::string::npos) continue;
    std::istringstream codes(line.substr(reply + 5));
    std::size_t cards = 0;
    for (std::string code; codes >> code;) cards += code != "00";
    return cards;
  }
  return 0;
}

class Replayed : public SiteTest, public testing::WithParamInterface<std::string> {
 protected:
  // Polling begins when the transcript enables it, with every client in place.
  void Play(const std::string& session) {
    StartBus({"--replay", session + ".recording", "--fast"});
    StartDaemonOnBus(CountRecordedCards(session + ".recording"));
    io_ = Connect(kIo);
    mon_ = Connect(kMon);
    std::ifstream transcript(session + ".transcript");
    for (std::string line; std::getline(transcript, line);) {
      if (line.empty() || line[0] == '#') continue;
      SCOPED_TRACE(line);
      const std::size_t end = line.find(' ');
      Step(line.substr(0, end), line.substr(end + 1));
    }
  }

 private:
  void Step(const std::string& who, const std::string& text) {
    const std::map<std::string, Client*> clients{{"CAE", &cae}, {"IO", &io_}, {"MON", &mon_}};
    const auto client = clients.find(who.substr(0, who.size() - 1));
    if (client != clients.end()) {
      if (who.back() == '>') client->second->Send(text + "\r\n");
      if (who.back() == '<') client->second->ExpectBytes(text + "\r\n\r");
    } else if (who == "bus>") {
      WaitFrame(text);
    } else {
      ASSERT_EQ(who, "log");
      logged_.push_back(text);
      EXPECT_TRUE(WaitUntil([this] { return IsLoggedInOrder(); }));
    }
  }

  bool IsLoggedInOrder() const {
    const auto lines = LogLines();
    auto from = lines.begin();
    for (const std::string& line : logged_) {
      from = std::find(from, lines.end(), line);
      if (from == lines.end()) return false;
      ++from;
    }
    return true;
  }

  Client io_;
  Client mon_;
  std::vector<std::string> logged_;
};

}  // namespace

TEST_P(Replayed, SaysWhatTheTranscriptSays) { Play(std::string(SESSIONS) + "/" + GetParam()); }

INSTANTIATE_TEST_SUITE_P(Session, Replayed, testing::ValuesIn(SessionNames()),
                         [](const auto& test) { return test.param; });
