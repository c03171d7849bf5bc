#include "BrokerSite.h"

#include <signal.h>

#include "kit/Ports.h"

namespace {

constexpr char kMosquitto[] = "/usr/sbin/mosquitto";
constexpr char kListener[] = "/usr/bin/mosquitto_sub";
constexpr char kTeller[] = "/usr/bin/mosquitto_pub";

// At once: neither has anything to put in order.
void End(std::unique_ptr<virtualbus::Program>& program) {
  if (!program) return;
  program->Signal(SIGKILL);
  program->WaitForExit();
  program.reset();
}

}  // namespace

void BrokerSite::TearDown() {
  if (HasFailure()) std::cout << "--- heard\n" << Heard();
  if (HasFailure() && broker) std::cout << "--- broker\n" << broker->Errors();
  End(listener);
  End(broker);  // the daemon's own end waits for whatever child there is
  HubSite::TearDown();
}

void BrokerSite::StartBroker(const std::string& more, int port) {
  StopBroker();
  const std::string file = broker_folder_.Write(
      "mosquitto.conf", "user root\npersistence false\nlog_dest stderr\nlistener " +
                            std::to_string(port) + " 127.0.0.1\n" + more);
  broker = std::make_unique<virtualbus::Program>(broker_folder_, kMosquitto,
                                                 std::vector<std::string>{"-c", file});
  ASSERT_TRUE(WaitUntil([port] { return IsListening(port); })) << broker->Errors();
}

void BrokerSite::StopBroker() { End(broker); }

std::string BrokerSite::BrokerSection(const std::string& more_keys) {
  return "[broker]\nhost = \"127.0.0.1\"\nname = \"bench\"\n" + more_keys;
}

void BrokerSite::StartAllWith(const std::string& more_keys) { StartAll(BrokerSection(more_keys)); }

void BrokerSite::Listen(const std::string& filter) {
  End(listener);
  listener = std::make_unique<virtualbus::Program>(
      listener_folder_, kListener,
      std::vector<std::string>{"-h", "127.0.0.1", "-F", "%r %t %p", "-t", filter, "-t", "ready"});
  ASSERT_TRUE(WaitUntil([this] {
    Tell("ready", "now");
    return HasHeard("0 ready now\n");
  }));
}

void BrokerSite::ExpectLevel(const std::string& level) {
  EXPECT_TRUE(WaitUntil([&] { return HasHeard(" " + level + "\n"); })) << level;
}

bool BrokerSite::HasHeard(const std::string& text) const {
  return ("\n" + Heard()).find(text) != std::string::npos;
}

size_t BrokerSite::TimesHeard(const std::string& text) const {
  const std::string all = Heard();
  size_t count = 0;
  for (size_t at = all.find(text); at != std::string::npos; at = all.find(text, at + 1)) ++count;
  return count;
}

void BrokerSite::ExpectHeard(const std::string& line) {
  EXPECT_TRUE(WaitUntil([&] { return HasHeard("\n" + line + "\n"); })) << line;
}

// The payload goes through a file: it may hold anything.
void BrokerSite::Tell(const std::string& topic, const std::string& payload,
                      const std::vector<std::string>& options) {
  const TempDir folder;
  const std::string file = folder.Write("payload", payload);
  std::vector<std::string> words{"-h", "127.0.0.1", "-t", topic, "-f", file};
  if (payload.empty()) words = {"-h", "127.0.0.1", "-t", topic, "-n"};
  words.insert(words.end(), options.begin(), options.end());
  virtualbus::Program teller(folder, kTeller, words);
  EXPECT_EQ(teller.WaitForExit(), 0) << teller.Errors();
}

void BrokerSite::TellAll(const Kept& messages) {
  const auto sized = [](const std::string& text) {
    return std::string{static_cast<char>(text.size() >> 8), static_cast<char>(text.size())} + text;
  };
  const auto packet = [](char type, const std::string& body) {
    std::string head(1, type);
    size_t rest = body.size();
    for (; rest > 127; rest >>= 7) head += static_cast<char>(rest | 0x80);
    return head + static_cast<char>(rest) + body;
  };
  std::string bytes =
      packet(0x10, sized("MQTT") + std::string("\x04\x02\x00\x00", 4) + sized("teller"));
  for (const auto& [topic, payload] : messages) bytes += packet(0x31, sized(topic) + payload);
  Stream client = Stream::ToPort(kBroker);
  client.Send(bytes + packet('\xC0', ""));  // a ping: its answer comes when all is kept
  EXPECT_EQ(client.Read(6), std::string("\x20\x02\x00\x00\xD0\x00", 6));
}

std::string BrokerSite::BrokerState() {
  const std::string answer = AskLocally("GET", "/api/bus");
  const size_t begin = answer.find("\"broker\":");
  return begin == std::string::npos ? answer
                                    : answer.substr(begin, answer.find('}', begin) - begin);
}

void BrokerSite::ExpectBroker(const std::string& state) {
  EXPECT_TRUE(WaitUntil([&] { return BrokerState().find(state) != std::string::npos; }))
      << BrokerState();
}

double BrokerSite::Metric(const std::string& name) {
  const std::string answer = AskLocally("GET", "/metrics");
  const size_t begin = answer.find("\n" + name + " ");
  return begin == std::string::npos ? -1 : std::stod(answer.substr(begin + name.size() + 2));
}
