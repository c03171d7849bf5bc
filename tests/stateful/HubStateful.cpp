#include "HubStateful.h"

#include <signal.h>

#include <algorithm>
#include <thread>

#include "kit/Ports.h"

namespace {

using std::chrono::milliseconds;

struct OutputCard {
  char digit;
  int channels;
  int start;          // of each channel, in the daemon's table
  const char* field;  // as `show` calls it
};

// The lines of card 5 count as 0 and 1, as they are on the wire.
constexpr OutputCard kCards[] = {
    {'0', 6, 0x80, "Positions "}, {'4', 4, 0x00, "Drive "}, {'5', 16, 1, "Lines "}};
constexpr char kLamps = '5';
constexpr int kLow = 0;  // on
constexpr int kHigh = 1;

// A killed hub has all sessions to find again, the daemon its adapter.
constexpr std::chrono::minutes kRecovery{3};

// The values of the card's channels in the bytes of its frame.
std::vector<int> ChannelsIn(const OutputCard& card, const std::string& hex) {
  std::vector<int> values;
  for (const std::string& word : Words(hex)) {
    const int byte = std::stoi(word, nullptr, 16);
    if (card.digit != kLamps) values.push_back(byte);
    for (int bit = 0; card.digit == kLamps && bit < 8; ++bit) values.push_back(byte >> bit & 1);
  }
  values.resize(static_cast<std::size_t>(card.channels));
  return values;
}

const OutputCard& CardOf(char digit) {
  return *std::ranges::find(kCards, digit, &OutputCard::digit);
}

std::string Text(const std::set<int>& values) {
  std::string text;
  for (const int value : values) text += " " + std::to_string(value);
  return text;
}

}  // namespace

TEST_F(HubStateful, CardsShowWhatClientsAskedFor) { RunScript("500"); }

void HubStateful::Begin() {
  SetUp();
  wanted_.clear();
  frames_seen_.clear();
  is_cable_in_ = is_daemon_there_ = true;
  for (const OutputCard& card : kCards)
    for (int channel = 0; channel < card.channels; ++channel)
      wanted_[{card.digit, channel}] = {card.start};
  asked_ = wanted_;
  std::filesystem::remove_all("/run/test/store");
  StartAll("[names]\n[card.4]\nkeep = true\n");
}

void HubStateful::ExpectWell() {
  EXPECT_TRUE(hub->IsRunning());
  if (is_daemon_there_) ExpectAlive();
}

void HubStateful::NoteCounts() { counts_["(exchanges timed out)"] = ExchangeTimeouts(); }

std::string HubStateful::Told() {
  return "--- hub\n" + hub->Errors() + AskLocally("GET", "/api/journal?limit=200") + "\n";
}

void HubStateful::End() {
  hub.reset();
  if (daemon.Running()) StopDaemon();
  if (daemon.Pid() > 0) daemon.WaitForEnd();
  bus.reset();
  DaemonProcess::EndOrphans();
}

// What was refused may have been done all the same: the receipt was cut off.
void HubStateful::Take(Output output, int value, bool is_sure) {
  asked_[output].insert(value);
  if (is_sure) wanted_[output].clear();
  wanted_[output].insert(value);
}

void HubStateful::Count(const std::string& answer) {
  const std::string what = "(answered " + std::to_string(StatusOf(answer)) + ")";
  ++counts_[what];
  Note(what);
}

int HubStateful::SetOne(const std::string& channel_and_value) {
  const auto words = Words(channel_and_value);
  const Output output{words[0][0], std::stoi(words[0].substr(2))};
  const int value = words[1] == "true" ? kLow : words[1] == "false" ? kHigh : std::stoi(words[1]);
  const std::string answer =
      Ask("PUT", "/api/channels/" + words[0], R"({"value":)" + words[1] + "}");
  Count(answer);
  Take(output, value, StatusOf(answer) == 200);
  return StatusOf(answer);
}

void HubStateful::SetLamps(const std::string& lines) {
  const auto words = Words(lines);
  const std::string answer =
      Ask("PATCH", "/api/cards/5",
          "{\"" + words[0] + "\":" + words[2] + ",\"" + words[1] + "\":" + words[2] + "}");
  Count(answer);
  for (int i = 0; i < 2; ++i)
    Take({kLamps, std::stoi(words[static_cast<std::size_t>(i)])}, words[2] == "true" ? kLow : kHigh,
         StatusOf(answer) == 200);
}

// A hub that dies in the middle leaves the line on.
void HubStateful::Pulse(const std::string& line_and_time) {
  const auto words = Words(line_and_time);
  const Output output{kLamps, std::stoi(words[0].substr(2))};
  const std::string answer =
      Ask("PUT", "/api/channels/" + words[0], R"({"value":true,"pulse":)" + words[1] + "}");
  Count(answer);
  Take(output, kLow, false);
  Take(output, kHigh, StatusOf(answer) == 200);
}

// A text port gives no receipts.
void HubStateful::WriteText(const std::string& commands) {
  WholeAnswer client{Client(kTextIo)};
  client.Send(commands + "\r\n");
  client.HalfClose();
  client.ReadAll();
  for (const std::string& command : Words(commands)) {
    const char digit = command[1];
    const int block = command[3] - '0';
    const int byte = std::stoi(command.substr(5), nullptr, 16);
    if (digit != kLamps) Take({digit, block}, byte, false);
    for (int bit = 0; digit == kLamps && bit < 8; ++bit)
      Take({digit, block * 8 + bit}, byte >> bit & 1, false);
  }
}

void HubStateful::Discover(const std::string&) { Count(Ask("POST", "/api/bus/discover", "{}")); }

void HubStateful::RebootCard(const std::string& card) {
  Count(Ask("POST", "/api/cards/" + card + "/reboot", "{}"));
}

void HubStateful::BusCable(const std::string& what) {
  if (is_cable_in_ == (what == "plug")) return;
  Bus("cable " + what);
  is_cable_in_ = !is_cable_in_;
}

void HubStateful::KillDaemon(const std::string&) {
  if (!is_daemon_there_) return;
  daemon.Kill(SIGKILL);
  daemon.WaitForEnd();
  is_daemon_there_ = false;
}

void HubStateful::StartDaemonAgain(const std::string&) {
  if (is_daemon_there_) return;
  StartDaemon();
  is_daemon_there_ = true;
}

// What it had not written yet, it does not know when it comes back.
void HubStateful::KillHub(const std::string&) {
  for (const auto& [output, values] : asked_) wanted_[output].insert(values.begin(), values.end());
  hub->Signal(SIGKILL);
  StopHub("");
}

void HubStateful::StopHub(const std::string&) {
  LaunchHub();
  EXPECT_TRUE(WaitUntil([] { return IsListening(kTextIo) && IsListening(kWeb); }, kRecovery));
}

void HubStateful::Wait(const std::string& time) {
  std::this_thread::sleep_for(milliseconds(std::stoi(time)));
}

bool HubStateful::IsReady() {
  if (AskLocally("GET", "/api/bus").find(R"("adapter":{"state":"up")") == std::string::npos)
    return false;
  const std::string cards = AskLocally("GET", "/api/cards");
  return cards.find(R"("address":"5")") != std::string::npos &&
         cards.find(R"("pending":true)") == std::string::npos;
}

void HubStateful::CheckAll(const std::string&) {
  ++counts_["(checks)"];
  StartDaemonAgain("");
  BusCable("plug");
  EXPECT_TRUE(WaitUntil([this] { return IsReady(); }, kRecovery)) << AskLocally("GET", "/api/bus");
  // Behind what still waits for the card comes a last command of a value of its own. A daemon that
  // has just started can list its cards only later.
  const int number = static_cast<int>(counts_["(checks)"] % 256);
  for (const std::string& last : {"0.0 " + std::to_string(number), "4.0 " + std::to_string(number),
                                  std::string(number % 2 == 0 ? "5.0 true" : "5.0 false")})
    EXPECT_TRUE(WaitUntil([&] { return SetOne(last) == 200; }, kRecovery)) << last;
  EXPECT_TRUE(WaitUntil([this] { return Difference().empty(); }, kRecovery)) << Difference();
  CheckFrames();
  EXPECT_TRUE(WaitUntil([] {
    return AskLocally("GET", "/metrics").find("\nqelm_store_documents_waiting 0\n") !=
           std::string::npos;
  }));
  // What was unsure is seen now. Of what a killed hub had not stored, only the daemon knows.
  for (const auto& [output, value] : Shown()) {
    wanted_[output] = {value};
    if (!IsKnown(output)) wanted_[output].insert(CardOf(output.first).start);
  }
  asked_ = wanted_;
}

bool HubStateful::IsKnown(const Output& output) {
  const std::string channel = output.first + ("." + std::to_string(output.second));
  return AskLocally("GET", "/api/channels/" + channel).find(R"("known":true)") != std::string::npos;
}

std::map<HubStateful::Output, int> HubStateful::Shown() {
  std::map<Output, int> shown;
  for (const OutputCard& card : kCards) {
    const std::string text = Bus(std::string("show ") + card.digit);
    const std::size_t begin = text.find(card.field) + std::string(card.field).size();
    int channel = 0;
    for (const int value : ChannelsIn(card, text.substr(begin, text.find('\n', begin) - begin)))
      shown[{card.digit, channel++}] = value;
  }
  return shown;
}

std::string HubStateful::Difference() {
  for (const auto& [output, value] : Shown())
    if (!wanted_[output].contains(value))
      return output.first + ("." + std::to_string(output.second)) + " shows " +
             std::to_string(value) + ", asked for was" + Text(wanted_[output]);
  return "";
}

void HubStateful::CheckFrames() {
  for (const OutputCard& card : kCards) {
    const auto writes = WritesTo(std::string(1, card.digit));
    for (std::size_t& at = frames_seen_[card.digit]; at < writes.size(); ++at) {
      ++counts_["(frames)"];
      const auto values = ChannelsIn(card, writes[at]);
      for (int channel = 0; channel < card.channels; ++channel) {
        const int value = values[static_cast<std::size_t>(channel)];
        if (value == card.start || asked_[{card.digit, channel}].contains(value)) continue;
        ADD_FAILURE() << "a frame to card " << card.digit << " (" << writes[at] << ") has " << value
                      << " at channel " << channel << ", asked for was"
                      << Text(asked_[{card.digit, channel}]);
      }
    }
  }
}
