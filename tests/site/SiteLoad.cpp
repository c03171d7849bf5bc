#include "SiteLoad.h"

#include <algorithm>
#include <cstdio>
#include <sstream>
#include <utility>

namespace {

constexpr std::chrono::milliseconds kTick{100};
constexpr int kDigitalInputs = 7;  // at 0 to 6
constexpr int kAnalogueCard = 9;   // behind two cards of keys
constexpr int kLastValue = 0x3F;   // what a key card can hold
constexpr long kWriteValues = 255;

const char* KindOf(int address) {
  if (address < kDigitalInputs) return "digital-input";
  return address == kAnalogueCard ? "analogue-input" : "keys";
}

}  // namespace

void SiteLoad::StartLoad(const std::vector<std::string>& options) {
  std::vector<std::string> all{"--wire", "460800", "--card", "A=digital-output"};
  for (int address = 0; address < kInputs; ++address)
    all.insert(all.end(), {"--card", std::to_string(address) + "=" + KindOf(address)});
  all.insert(all.end(), options.begin(), options.end());
  inputs_[kAnalogueCard].averaged = true;

  WriteConfig({.percent = "100", .poll = "TRUE"});
  StartBus(all);
  StartDaemonOnBus(static_cast<std::size_t>(std::count(all.begin(), all.end(), "--card")),
                   {.quick = false});
  io = Connect(kIo);
  reader_ = std::jthread([this] { ReadReports(); });
}

void SiteLoad::RunLoad(double minutes, const std::function<void(long)>& also) {
  const auto end = Clock::now() + std::chrono::duration<double, std::ratio<60>>(minutes);
  for (auto tick = Clock::now(); tick < end; tick += kTick) {
    std::this_thread::sleep_until(tick);
    ChangeInputs();
    io.Send("aAb0d" + ValueOf(writes) + "\r\n");
    also(writes++);
  }
}

void SiteLoad::EndLoad() {
  if (!WaitUntil([this] { return Pending() == 0; })) lost_ = Pending();
  Bus("set 0 1 FF");  // block 1 is never used otherwise: the reader's last report
  reader_.join();
}

std::string SiteLoad::ValueOf(long write) { return Hex(write % kWriteValues); }

std::vector<double> SiteLoad::TakeLatencies() {
  const std::lock_guard guard(lock_);
  return std::exchange(latencies_, {});
}

void SiteLoad::PrintReports() {
  std::printf("inputs: %ld changes, %ld reports, %ld lost, %ld doubled, %ld wrong\n", changes_,
              reports_, lost_, doubled_, wrong_);
}

void SiteLoad::ExpectGoodReports() { EXPECT_EQ(lost_ + doubled_ + wrong_, 0); }

void SiteLoad::ChangeInputs() {
  const std::lock_guard guard(lock_);
  for (int i = 0; i < kInputs; ++i) {
    Input& input = inputs_[i];
    if (input.reported != input.target) continue;
    input.target = input.target % kLastValue + 1;
    input.changed = Clock::now();
    ++changes_;
    Bus("set " + std::to_string(i) + " 0 " + Hex(input.target));
  }
}

long SiteLoad::Pending() {
  const std::lock_guard guard(lock_);
  return std::count_if(std::begin(inputs_), std::end(inputs_),
                       [](const Input& input) { return input.reported != input.target; });
}

void SiteLoad::ReadReports() {
  while (true) {
    const std::string report = io.ReadUntil("\r\n\r");
    if (report == "a0b1dFF\r\n\r" || report.empty()) return;
    const std::lock_guard guard(lock_);
    ++reports_;
    TakeReport(report);
  }
}

void SiteLoad::TakeReport(const std::string& report) {
  unsigned card = 0, block = 0, value = 0;
  const int fields = std::sscanf(report.c_str(), "a%1Xb%1Xd%2X", &card, &block, &value);
  if (fields != 3 || card >= kInputs || block != 0) {
    ++wrong_;
    return;
  }
  Input& input = inputs_[card];
  const int is_now = static_cast<int>(value);
  const bool between = input.averaged && (is_now < input.target) != (is_now < input.reported);
  if (is_now == input.reported)
    ++doubled_;
  else if (is_now != input.target && !between)
    ++wrong_;
  input.reported = is_now;
  if (is_now == input.target && !input.averaged)
    latencies_.push_back(std::chrono::duration<double>(Clock::now() - input.changed).count());
}

std::string Argument(std::size_t number, const std::string& otherwise) {
  std::istringstream words(ReadFile("/proc/self/cmdline"));
  std::string word;
  for (std::size_t i = 0; i <= number; ++i)
    if (!std::getline(words, word, '\0')) return otherwise;
  return word;
}
