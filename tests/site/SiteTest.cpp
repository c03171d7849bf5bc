#include "SiteTest.h"

#include <algorithm>
#include <filesystem>
#include <sstream>

namespace {

constexpr char kTimeout[] = "[INF] comm timeout /dev/ttyUSB0";
constexpr char kCheck[] = "[INF] try to catch hardware on /dev/ttyUSB0";
constexpr int kMostTries = 5;

// What stands in a line of the bus's output behind the time.
std::string_view WithoutTime(std::string_view line) {
  constexpr std::size_t kTimeWidth = 13;
  return line.substr(std::min(line.size(), kTimeWidth));
}

std::size_t CountCards(std::istringstream table) {
  std::size_t cards = 0;
  for (std::string line; std::getline(table, line);) {
    cards += line.find("DTI:") != std::string::npos && line.find(":EMPTY") == std::string::npos;
  }
  return cards;
}

}  // namespace

void SiteTest::TearDown() {
  if (daemon.Running()) StopDaemon();
  if (HasFailure() && bus) std::cout << "--- bus\n" << bus->Output() << bus->Errors();
  script_.reset();
  bus.reset();
  DaemonTest::TearDown();
}

void SiteTest::StartBus(std::vector<std::string> options) {
  options.insert(options.begin(), {"--link", kDevice, "--control", kControlPath});
  bus = std::make_unique<virtualbus::Program>(folder_, options);
  ASSERT_TRUE(WaitUntil([&] { return std::filesystem::exists(kDevice) || !bus->IsRunning(); }));
  ASSERT_TRUE(bus->IsRunning()) << bus->Errors();
  script_ = std::make_unique<virtualbus::Script>(kControlPath);
}

void SiteTest::StartDaemonOnBus(std::size_t cards, const LaunchOptions& options, Place place) {
  StartDaemon(options, place);
  cae = Connect(kCae, place);
  const bool found = WaitUntil([&] {
    cae.Send("DISCOVER\r\n");
    return CountCards(std::istringstream(cae.ReadUntil(">\r\n\r"))) == cards;
  });
  if (!found) FAIL_AT(place) << "not " << cards << " cards are found";
}

void SiteTest::StartSite(Place place) {
  StartBus();
  StartDaemonOnBus(8, {}, place);
}

std::string SiteTest::Bus(const std::string& line, Place place) {
  std::string answer = script_->Order(line);
  if (!answer.ends_with("ok")) FAIL_AT(place) << line << ": " << answer;
  return answer.substr(0, answer.size() - 2);
}

void SiteTest::WaitFrame(const std::string& bytes, Place place) {
  // Shorter than the patience that reads the answer.
  Bus("wait frame " + bytes + " within 60s", place);
}

void SiteTest::ExpectHeld(const std::string& address, const std::string& line, Place place) {
  std::string held;
  const bool shown = WaitUntil([&] {
    held = Bus("show " + address, place);
    return held.find("  " + line + "\n") != std::string::npos;
  });
  if (!shown) FAIL_AT(place) << "expected " << line << ", seen " << held;
}

void SiteTest::Request(const std::string& line, const std::string& lines, Place place) {
  const std::string expected = lines + ">\r\n\r";
  std::string answer;
  for (int tries = 0; tries < kMostTries; ++tries) {
    cae.Send(line + "\r\n", place);
    answer = cae.ReadUntil(">\r\n\r", place);
    if (answer == expected) return;
    if (answer.find(" ERROR\r\n") == std::string::npos && CountLogged(kTimeout) == 0) break;
  }
  FAIL_AT(place) << line << " is answered " << testing::PrintToString(answer);
}

std::vector<std::string> SiteTest::WritesTo(const std::string& address) const {
  const std::string prefix = "> 10 0" + address + " ";
  std::vector<std::string> writes;
  std::istringstream output(bus->Output());
  for (std::string line; std::getline(output, line);) {
    const std::string_view frame = WithoutTime(line);
    if (!frame.starts_with(prefix)) continue;
    const std::string_view data = frame.substr(prefix.size() + 3);  // behind the count
    writes.emplace_back(data.substr(0, data.find("  ")));
  }
  return writes;
}

int SiteTest::WritesLostOnTheLine(const std::string& address) const {
  const std::string prefix = "> 10 0" + address + " ";
  std::istringstream output(bus->Output());
  int lost = 0;
  bool is_write = false;
  for (std::string line; std::getline(output, line);) {
    const std::string_view entry = WithoutTime(line);
    if (is_write && entry.starts_with("# frame lost")) ++lost;
    is_write = entry.starts_with(prefix);
  }
  return lost;
}

int SiteTest::ExchangeTimeouts() {
  const auto lines = LogLines();
  int count = 0;
  for (std::size_t i = 0; i < lines.size(); ++i) {
    count += lines[i] == kTimeout && (i == 0 || lines[i - 1] != kCheck);
  }
  return count;
}
