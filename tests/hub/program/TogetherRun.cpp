// hub_together [MINUTES [SEED]]: two scripts, a WebSocket client, `qelmctl watch` and an IO client
// that was written for the daemon, all at once, while inputs move and the cable is pulled. Nobody
// misses an event or a level's last value, and in the end all agree.
#include <array>
#include <atomic>
#include <cstdio>
#include <mutex>
#include <random>
#include <thread>

#include "Follower.h"
#include "HubSite.h"
#include "SiteLoad.h"
#include "WebClient.h"
#include "kit/Bytes.h"

namespace {

using Clock = std::chrono::steady_clock;
using std::chrono::milliseconds;

class Chance {
 public:
  explicit Chance(unsigned seed) : random_(seed) {}
  int Below(int bound) { return std::uniform_int_distribution(0, bound - 1)(random_); }
  void Pause(int most) { std::this_thread::sleep_for(milliseconds(1 + Below(most))); }

 private:
  std::mt19937 random_;
};

class Together : public HubSite {
 protected:
  void TearDown() override {
    watch_.reset();
    HubSite::TearDown();
  }

  void RunTogether(double minutes, unsigned seed);

 private:
  void RunTextScript(unsigned seed);
  void RunHttpScript(unsigned seed);
  void WriteOverWebSocket(unsigned seed);
  void ReadWebSocket();
  void ReadIo();
  void SendFrame(int opcode, const std::string& payload);
  void MoveSomething(Chance& chance);
  void PressKey(int code);
  void ReadWatch();
  std::string Disagreement();  // of those who listen; empty where all agree
  void Print() const;

  std::atomic<bool> is_over_ = false;
  std::array<int, 2> lamps_{0xFF, 0xFF};
  std::array<int, 6> servos_{0x80, 0x80, 0x80, 0x80, 0x80, 0x80};
  std::atomic<long> commands_ = 0;
  std::atomic<long> key_reports_ = 0;
  std::atomic<long> key_changes_ = 0;
  long pulls_ = 0;
  long presses_ = 0;

  std::mutex socket_lock_;
  std::unique_ptr<hub::http::WebClient> socket_;
  std::mutex lock_;  // of the follower of the WebSocket, and of what IO has reported
  Follower live_{true};
  std::map<std::string, std::string> reported_;  // "a3b0": "40"
  Client io_;
  std::unique_ptr<virtualbus::Program> watch_;
  TempDir watch_folder_;
  Follower watched_{false};
  size_t watch_read_ = 0;
};

// Comes for a few commands and goes again. Its lamps are the first eight.
void Together::RunTextScript(unsigned seed) {
  Chance chance(seed);
  while (!is_over_) {
    WholeAnswer client{Client(kTextIo)};
    for (int i = chance.Below(5); i >= 0; --i) {
      lamps_[0] = chance.Below(256);
      client.Send("a5b0d" + Hex(lamps_[0]) + "\r\n");
      ++commands_;
    }
    client.HalfClose();
    EXPECT_EQ(client.ReadAll().find("COE"), std::string::npos);
    chance.Pause(100);
  }
}

// Lamps 8 to 15, each by itself.
void Together::RunHttpScript(unsigned seed) {
  Chance chance(seed);
  while (!is_over_) {
    const int line = chance.Below(8);
    const bool is_on = chance.Below(2) == 0;
    const std::string answer = Ask("PUT", "/api/channels/5." + std::to_string(8 + line),
                                   is_on ? R"({"value":true})" : R"({"value":false})");
    EXPECT_NE(answer.find("200 OK"), std::string::npos) << answer;
    lamps_[1] = is_on ? lamps_[1] & ~(1 << line) : lamps_[1] | 1 << line;
    ++commands_;
    chance.Pause(60);
  }
}

void Together::SendFrame(int opcode, const std::string& payload) {
  const std::lock_guard guard(socket_lock_);
  socket_->SendFrame(opcode, payload);
}

// All servos but the last.
void Together::WriteOverWebSocket(unsigned seed) {
  constexpr int kText = 1;
  Chance chance(seed);
  for (int id = 2; !is_over_; ++id) {
    const auto servo = static_cast<size_t>(chance.Below(5));
    servos_[servo] = chance.Below(256);
    SendFrame(kText, R"({"jsonrpc":"2.0","id":)" + std::to_string(id) +
                         R"(,"method":"channels.set","params":{"id":"0.)" + std::to_string(servo) +
                         R"(","value":)" + std::to_string(servos_[servo]) + "}}");
    ++commands_;
    chance.Pause(60);
  }
}

void Together::ReadWebSocket() {
  constexpr int kText = 1;
  constexpr int kPing = 9;
  constexpr int kPong = 10;
  try {
    while (true) {
      const hub::http::Frame frame = socket_->ReadFrame();
      if (frame.opcode == kPing) SendFrame(kPong, frame.payload);
      if (frame.opcode != kText) continue;
      const std::lock_guard guard(lock_);
      const std::string complaint = live_.Take(frame.payload);
      EXPECT_EQ(complaint, "");
    }
  } catch (const std::exception&) {
    EXPECT_TRUE(is_over_) << "the WebSocket has ended";
  }
}

// Every report, as the daemon words it. Its own servo is the last one.
void Together::ReadIo() {
  while (io_.IsServed()) {
    const std::string report = io_.ReadUntil("\r\n\r");
    const std::string byte = report.substr(5, 2);
    const std::lock_guard guard(lock_);
    std::string& last = reported_[report.substr(0, 4)];
    if (report.starts_with("a8b0")) {
      // Before the first report no key is pressed. One that is held while the link is found again
      // is reported twice.
      key_changes_ += byte != (last.empty() ? "00" : last);
      ++key_reports_;
    }
    last = byte;
  }
  EXPECT_TRUE(is_over_) << "the IO session has ended";
}

void Together::PressKey(int code) {
  ++presses_;
  for (const char* order : {"press 8 ", "release 8 "}) {
    const long before = key_reports_;
    Bus(order + Hex(code));
    EXPECT_TRUE(WaitUntil([&] { return key_reports_ > before; })) << order << code;
  }
}

void Together::MoveSomething(Chance& chance) {
  switch (chance.Below(40)) {
    case 0:
      Bus("cable pull");
      ++pulls_;
      chance.Pause(1500);
      Bus("cable plug");
      break;
    case 1:
    case 2:
    case 3:
    case 4:
      PressKey(1 + chance.Below(40));
      break;
    case 5:
    case 6:
    case 7:
    case 8:
      servos_[5] = chance.Below(256);
      io_.Send("a0b5d" + Hex(servos_[5]) + "\r\n");
      ++commands_;
      break;
    default:
      if (chance.Below(2) == 0)
        Bus("set 3 " + std::to_string(chance.Below(2)) + " " + Hex(chance.Below(256)));
      else
        Bus("set F " + std::to_string(chance.Below(6)) + " " + Hex(chance.Below(256)));
  }
  chance.Pause(80);
}

void Together::ReadWatch() {
  const std::string output = watch_->Output();
  for (size_t end; (end = output.find('\n', watch_read_)) != std::string::npos;
       watch_read_ = end + 1) {
    const std::string complaint = watched_.Take(output.substr(watch_read_, end - watch_read_));
    EXPECT_EQ(complaint, "");
  }
}

std::string Together::Disagreement() {
  ReadWatch();
  const std::string answer = Ask("GET", "/api/cards");
  const auto values = Follower::ValuesOf(answer.substr(answer.find("\r\n\r\n") + 4));
  const std::lock_guard guard(lock_);
  for (const auto& [channel, value] : values) {
    const auto known = [&](const Follower& of) {
      const auto found = of.Values().find(channel);
      return found == of.Values().end() ? "nothing" : found->second;
    };
    if (known(live_) != value || known(watched_) != value)
      return channel + " is " + value + ", over the WebSocket " + known(live_) + ", by watch " +
             known(watched_);
  }
  for (const auto& [block, hex] : reported_) {
    if (!block.starts_with("aF")) continue;
    const auto channel = values.find("F." + block.substr(3));
    if (channel == values.end() || channel->second != std::to_string(std::stoi(hex, nullptr, 16)))
      return block + " was reported as " + hex;
  }
  if (live_.Events() != watched_.Events()) return "events";
  if (live_.Events().size() != static_cast<size_t>(key_changes_)) return "keys";
  return "";
}

void Together::Print() const {
  std::printf(
      "%ld commands, %ld pulls, %ld keys: %ld changes of keys, %zu events over the WebSocket, %zu "
      "by watch; %ld messages over the WebSocket, %ld by watch\n",
      commands_.load(), pulls_, presses_, key_changes_.load(), live_.Events().size(),
      watched_.Events().size(), live_.Messages(), watched_.Messages());
}

void Together::RunTogether(double minutes, unsigned seed) {
  StartAll();
  const std::string url = "http://localhost:" + std::to_string(kWeb);
  watch_ = std::make_unique<virtualbus::Program>(
      watch_folder_, QELMCTL, std::vector<std::string>{"--url", url, "--json", "watch"});
  ASSERT_TRUE(WaitUntil([this] { return !watch_->Output().empty(); })) << watch_->Errors();
  socket_ = std::make_unique<hub::http::WebClient>(hub::http::WebClient::ToPort(kWeb));
  ASSERT_EQ(socket_->Upgrade().status, 101);
  SendFrame(1, R"({"jsonrpc":"2.0","id":1,"method":"live.subscribe"})");
  io_ = Greeted(kTextIo);
  std::jthread live([this] { ReadWebSocket(); });
  std::jthread reports([this] { ReadIo(); });
  {
    std::array<std::jthread, 3> writers{std::jthread([=, this] { RunTextScript(seed + 1); }),
                                        std::jthread([=, this] { RunHttpScript(seed + 2); }),
                                        std::jthread([=, this] { WriteOverWebSocket(seed + 3); })};
    Chance chance(seed);
    const auto end = Clock::now() + milliseconds(static_cast<long>(minutes * 60'000));
    while (Clock::now() < end && !HasFailure()) MoveSomething(chance);
    is_over_ = true;
  }
  ExpectHeld("5", "Lines " + Hex(lamps_[0]) + " " + Hex(lamps_[1]));
  ExpectHeld("0", "reached " + Hex({servos_.begin(), servos_.end()}));
  EXPECT_TRUE(WaitUntil([this] { return Disagreement().empty(); })) << Disagreement();
  Print();
  hub->Signal(SIGTERM);
}

}  // namespace

TEST_F(Together, Run) {
  RunTogether(std::stod(Argument(1, "10")), static_cast<unsigned>(std::stoul(Argument(2, "1"))));
}
