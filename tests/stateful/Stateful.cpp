#include "Stateful.h"

#include <algorithm>
#include <cstdio>
#include <sstream>
#include <utility>

namespace {

constexpr int kMostTries = 3;
constexpr long kAllowedGrowthKilobytes = 6 * 1024;  // poll frames that wait, at their longest

struct Card {
  const char* address;
  const char* kind;
  const char* name;
};

// No input card stands right behind another, whose answers a wrong address would make its own.
constexpr Card kCards[] = {
    {"0", "servo", "6 channel RC SERVO CONTROLLER"},
    {"2", "digital-input", "16 channel DIGITAL INPUT"},
    {"4", "motor", "3 channel DC MOTOR CONTROLLER"},
    {"5", "digital-output", "16 channel DIGITAL OUTPUT"},
    {"7", "digital-input", "16 channel DIGITAL INPUT"},
    {"8", "ir", "IR REMOTE CONTROLLER"},
    {"A", "keys", "KEYMX and ROTE CONTROLLER"},
    {"C", "analogue-input", "6 channel ANALOGUE INPUT"},
    {"E", "lcd", "ALPHANUMERIC LCD CONTROLLER"},
};

std::vector<int> DataBytes(const std::string& hex) {
  std::vector<int> bytes;
  for (const std::string& word : Words(hex)) bytes.push_back(std::stoi(word, nullptr, 16));
  return bytes;
}

}  // namespace

TEST_F(Stateful, HoldsWhateverIsDone) { RunScript("2000"); }

void Stateful::Begin() {
  SetUp();
  std::vector<std::string> options{"--seed", "1"};
  for (const Card& card : kCards) {
    options.insert(options.end(), {"--card", std::string(card.address) + "=" + card.kind});
    plugged_[card.address] = sure_[card.address] = polled_[card.address] = true;
  }
  inputs_ = {{"2", 0}, {"7", 0}, {"7", 1}, {"A", 0}};
  outputs_.clear();
  writes_taken_.clear();
  missing_writes_ = 0;
  cable_plugged_ = polling_ = true;
  owed_on_cae_ = false;
  WriteConfig({.percent = "100", .poll = "TRUE"});
  StartBus(options);
  StartDaemonOnBus(std::size(kCards), {.environment = {{"QELM_TEST_SLEEP_DIVISOR", "1000"}}});
  cae_up_ = true;
  IoConnect("");
  MonConnect("");
  threads_ = daemon.Threads();
  memory_ = daemon.ResidentKilobytes();
}

void Stateful::End() {
  io_.Close();
  mon_.Close();
  cae.Close();
  io_up_ = mon_up_ = cae_up_ = false;
  ExpectAlive();
  if (daemon.Running()) StopDaemon();
  if (daemon.Pid() > 0) daemon.WaitForEnd();
  bus.reset();
  DaemonProcess::EndOrphans();
  const std::string errors = ReadFile(kStderr);
  EXPECT_EQ(errors, "") << "standard error of the daemon";
}

void Stateful::NoteCounts() {
  counts_["(exchanges timed out)"] = ExchangeTimeouts();
  counts_["(writes missing)"] = missing_writes_;
  counts_["(growth in KiB)"] = daemon.Running() ? daemon.ResidentKilobytes() - memory_ : 0;
}

bool Stateful::IsPolled(const Input& input) const {
  return polling_ && polled_.at(input.card) && sure_.at(input.card);
}

void Stateful::CaePolling(const std::string& line) {
  const std::size_t colon = line.find(':');
  const std::string card = colon == std::string::npos ? "" : line.substr(colon + 1);
  if (!cae_up_ || (!card.empty() && !sure_[card])) return;
  AwaitReports();
  const std::string answer = SayOnCae(line);
  EXPECT_TRUE(answer.starts_with("CIA: ")) << line << " is answered " << answer;

  std::vector<Input*> silent;
  for (Input& input : inputs_)
    if (!IsPolled(input)) silent.push_back(&input);
  if (card.empty()) polling_ = line == "ENABLEPOLL";
  if (!card.empty()) polled_[card] = line.starts_with("POLLON");
  for (Input* input : silent)
    if (IsPolled(*input)) input->state.BecomePolled(io_up_);
}

bool Stateful::TableIsWhole() {
  const std::string table = SayOnCae("DISCOVER");
  return std::all_of(std::begin(kCards), std::end(kCards), [&](const Card& card) {
    const std::string line = std::string("DTI:0x") + card.address + ":" + card.name + "\r\n\r";
    return !plugged_[card.address] || table.find(line) != std::string::npos;
  });
}

// The answer of the bus can be lost; one asks again, as an administrator would.
void Stateful::CaeForceDiscover(const std::string&) {
  if (!cae_up_) return;
  Fence();
  AwaitReports();
  HealLine();
  bool is_whole = false;
  for (int tries = 0; tries < kMostTries && !is_whole && !HasFailed(); ++tries) {
    const std::string answer = SayOnCae("FORCEDISCOVER");
    EXPECT_TRUE(answer.starts_with("FORCED DISCOVER LIST:\r\n\r")) << answer;
    for (Input& input : inputs_) {
      sure_[input.card] = polled_[input.card] = plugged_[input.card];
      input.state.Forget(IsPolled(input), io_up_);
    }
    is_whole = WaitUntil([this] { return HasFailed() || TableIsWhole(); }, kLinkPatience);
  }
  EXPECT_TRUE(is_whole) << "cards are not found";
  sure_ = plugged_;
}

void Stateful::BusSet(const std::string& arguments) {
  const auto words = Words(arguments);
  if (!plugged_[words[0]]) return;
  for (Input& input : inputs_) {
    if (input.card != words[0] || std::to_string(input.block) != words[1]) continue;
    const int value = std::stoi(words[2], nullptr, 16);
    if (input.state.IsDue()) AwaitReports(input.card);
    if (input.state.MayBeKnown(value)) continue;
    Bus("set " + arguments);
    input.state.Change(value, IsPolled(input), io_up_);
  }
}

// Until the bus has been asked again, it is not sure what the daemon takes the card for.
void Stateful::BusCard(const std::string& arguments) {
  const auto words = Words(arguments);
  const bool plug = words[1] == "plug";
  if (!cae_up_ || plugged_[words[0]] == plug) return;
  Fence();
  AwaitReports(words[0]);
  Bus("card " + arguments);
  plugged_[words[0]] = plug;
  sure_[words[0]] = false;
}

void Stateful::BusCable(const std::string& what) {
  if (cable_plugged_ == (what == "plug")) return;
  Bus("cable " + what);
  cable_plugged_ = !cable_plugged_;
}

void Stateful::BusFault(const std::string& fault) { Bus(fault); }

// Random bytes may be anything, even a table of cards: the bus is asked again.
void Stateful::BusGarbage(const std::string& count) {
  if (io_up_ || !cae_up_) return;
  Bus("garbage " + count);
  CaeForceDiscover("");
}

// What would keep the link from working for ever.
void Stateful::HealLine() {
  BusCable("plug");
  Bus("late 0ms");
}

void Stateful::CheckAll(const std::string&) {
  ++counts_["(checks)"];
  CaeConnect("");
  IoConnect("");
  MonConnect("");
  HealLine();
  Bus("faults off");
  for (const Card& card : kCards) BusCard(std::string(card.address) + " plug");
  CaeForceDiscover("");
  CaePolling("ENABLEPOLL");
  AwaitReports();
  CaeSpeed("100");
  EXPECT_EQ(SayOnCae("GETLASTINPST:2=1"),
            "CIA: LAST INPUT STATE SENT ON IO INTERFACE\r\n\r>\r\n\r");
  std::string item;
  do {
    item = io_.ReadUntil("\r\n\r");
    TakeIo(item);
  } while (!HasFailed() && item != kSentinel);
  CheckWrites();
  CheckNothingIsLeft();
}

// A last write to each card, of a value that is not drawn, comes after all others.
void Stateful::CheckWrites() {
  const int number = static_cast<int>(counts_["(checks)"]);
  const std::string value = Hex(0x80 + number % 0x7F);
  const std::string letter(1, static_cast<char>('a' + number % 26));
  const std::map<std::string, std::string> last{{"0", value},
                                                {"4", value},
                                                {"5", value},
                                                {"8", "01 " + value},
                                                {"E", "09 00 00 " + Hex(letter[0])}};
  IoWrite("a0b0d" + value + " a4b0d" + value + " a5b0d" + value + " a8sHS" + value +
          " aElPAp0000t" + letter);
  for (const auto& [address, data] : last) {
    const auto is_last = [&] {
      const auto writes = WritesTo(address);
      return !writes.empty() && writes.back().starts_with(data);
    };
    EXPECT_TRUE(WaitUntil(is_last, kLinkPatience))
        << "card " << address << " does not get its last write";
    TakeWrites(address);
  }
  EXPECT_LE(missing_writes_, ExchangeTimeouts());
}

void Stateful::TakeWrites(const std::string& address) {
  const auto writes = WritesTo(address);
  for (std::size_t& taken = writes_taken_[address]; taken < writes.size(); ++taken) {
    const Complaint complaint = outputs_[address].TakeFrame(DataBytes(writes[taken]));
    EXPECT_EQ(complaint, "") << "card " << address << ": " << writes[taken];
  }
  missing_writes_ += outputs_[address].TakeMissing();
}

void Stateful::CheckNothingIsLeft() {
  for (Client* client : {&io_, &mon_, &cae}) client->Close();
  LoseIo();
  mon_up_ = cae_up_ = false;
  // Three listening ports, the adapter and the standard ones; passing pipes do not count.
  const auto holds_seven = [this] {
    const auto targets = daemon.Descriptors();
    return std::count_if(targets.begin(), targets.end(), [](const std::string& target) {
             return !target.starts_with("pipe:");
           }) == 7;
  };
  EXPECT_TRUE(WaitUntil(holds_seven, kLinkPatience))
      << daemon.Descriptors().size() << " descriptors";
  EXPECT_EQ(daemon.Threads(), threads_);
  if (!daemon.Instrumented()) {
    EXPECT_LE(daemon.ResidentKilobytes(), memory_ + kAllowedGrowthKilobytes);
  }
}
