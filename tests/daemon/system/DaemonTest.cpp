#include "DaemonTest.h"

#include <signal.h>
#include <sys/wait.h>

#include <algorithm>
#include <filesystem>
#include <sstream>

#include "kit/Proc.h"

namespace {

namespace fs = std::filesystem;

std::string Entry(const std::string& name, Port port, const std::string& input,
                  const std::string& output) {
  return "    <Interface Name=\"" + name + "\" InpSeparator=\"" + input + "\" OutSeparator=\"" +
         output + "\" Port=\"" + std::to_string(port) + "\"/>\n";
}

}  // namespace

DaemonTest::DaemonTest() { WriteConfig({}); }

void DaemonTest::SetUp() {
  for (const char* folder : {"/run/test", "/run/qelm"}) {
    fs::remove_all(folder);
    fs::create_directory(folder);
  }
  const auto* test = testing::UnitTest::GetInstance()->current_test_info();
  const std::string name = std::string(test->test_suite_name()) + "." + test->name();
  const std::string difference = Front::Now().Difference(name);
  if (!difference.empty()) GTEST_SKIP() << difference;
}

void DaemonTest::TearDown() {
  Front::Now().End();
  if (daemon.Running()) {
    StopDaemon();
  } else if (daemon.Pid() > 0) {
    daemon.WaitForEnd();
    ADD_FAILURE() << "the daemon ended by itself";
  }
  DaemonProcess::EndOrphans();
  ExpectCleanStderr();
  if (HasFailure()) {
    std::cout << "--- log\n" << ReadFile(kLogFile) << "--- stdout\n" << ReadFile(kStdout);
    std::cout << "--- stderr\n" << ReadFile(kStderr) << "---\n";
  }
}

void DaemonTest::ExpectCleanStderr() { EXPECT_FALSE(HasSanitizerReport(ReadFile(kStderr))); }

void DaemonTest::WriteConfigText(const std::string& xml) { WriteFile(kConfigPath, xml); }

void DaemonTest::WriteConfig(const ConfigFile& config) {
  WriteConfigText("<?xml version=\"1.0\"?>\n<QELMConfig>\n  <Debuglog File=\"" + config.log_file +
                  "\" Loglevel=\"" + config.log_level + "\"/>\n  <Speed Percent=\"" +
                  config.percent + "\"/>\n  <InitPollState Action=\"" + config.poll +
                  "\"/>\n  <AutoDiscover Action=\"" + config.discover + "\"/>\n  <Interfaces>\n" +
                  Entry("IO", kIo, config.io_input, config.io_output) +
                  Entry("CAE", kCae, config.cae_input, config.cae_output) +
                  Entry("MON", kMon, R"(\r\n)", R"(\r\n)") + "  </Interfaces>\n</QELMConfig>\n");
}

void DaemonTest::PlugCard(int address, std::uint8_t type) {
  adapter.PlugCard(address, type);
  plugged_ += Hex(address, 1);
}

void DaemonTest::StartDaemon(const LaunchOptions& options, Place place) {
  fs::remove(kPidFile);
  if (daemon.Launch(options) != 0) FAIL_AT(place) << "the launch fails";
  if (!daemon.WaitForPid()) FAIL_AT(place) << "no pid file of a running daemon";
  Front::Now().Start(place);
}

void DaemonTest::StartOnBus(const LaunchOptions& options, Place place) {
  adapter.Plug();
  StartDaemon(options, place);
  cae = Connect(kCae, place);
  adapter.ExpectFrame({0x30}, place);
  if (!WaitUntil([this] { return CardsAreFound(); })) FAIL_AT(place) << "cards are not found";
  Front::Now().AwaitOutputs(place);
  adapter.ForgetFrames();
}

bool DaemonTest::CardsAreFound() {
  cae.Send("DISCOVER\r\n");
  const std::string table = cae.ReadUntil(">\r\n\r");
  return std::all_of(plugged_.begin(), plugged_.end(), [&](char address) {
    return table.find(std::string("DTI:0x") + address + ":EMPTY") == std::string::npos;
  });
}

void DaemonTest::StopDaemon(Place place) {
  const auto status = daemon.EndBy(SIGTERM);
  if (status && WIFEXITED(*status) && WEXITSTATUS(*status) == 0) return;
  FAIL_AT(place) << "SIGTERM gives wait status " << status.value_or(-1);
  if (!daemon.Running()) return;
  daemon.Kill(SIGKILL);
  daemon.WaitForEnd();
}

int DaemonTest::RunToItsEnd(Place place) {
  fs::remove(kPidFile);
  if (daemon.Launch({}) != 0) FAIL_AT(place) << "the launch fails";
  const auto status = daemon.WaitForEnd();
  if (status && WIFEXITED(*status)) return WEXITSTATUS(*status);
  FAIL_AT(place) << "wait status " << status.value_or(-1);
  return -1;
}

void DaemonTest::ExpectAbort(Place place) {
  const auto status = daemon.WaitForEnd();
  if (!status || !WIFSIGNALED(*status) || WTERMSIG(*status) != SIGABRT) {
    FAIL_AT(place) << "expected abort, wait status " << status.value_or(-1);
  }
  const std::string all = ReadFile(kStderr);
  const std::string text = all.substr(0, all.find("qemu: uncaught target signal"));
  if (text.size() < 2 || text.find('\n') != text.size() - 1) {
    FAIL_AT(place) << "expected one line on standard error, seen: " << text;
  }
}

void DaemonTest::ExpectAlive(Place place) {
  if (!daemon.Running()) FAIL_AT(place) << "the daemon has ended";
}

Client DaemonTest::Dial(Port port) {
  Client client;
  WaitUntil([&] {
    client = Client(Front::Now().PortOf(port));
    return client.IsServed();
  });
  return client;
}

Client DaemonTest::Connect(Port port, Place place) {
  Client client = Dial(port);
  const char* greeting = port == kCae
                             ? "QELM CAE interface is ready\r\n(Type HELP for help)\r\n>\r\n\r"
                         : port == kIo ? "QELM IO interface is ready\r\n\r"
                                       : "QELM MON interface is ready\r\n\r";
  client.ExpectBytes(greeting, place);
  return client;
}

void DaemonTest::Command(const std::string& line, const std::string& lines, Place place) {
  cae.Send(line + "\r\n", place);
  cae.ExpectBytes(lines + ">\r\n\r", place);
}

void DaemonTest::ExpectIllegal(Client& io, const std::string& command, Place place) {
  Front::Now().ExpectIllegal(io, cae, command, place);
}

void DaemonTest::ExpectAnswer(Place place) {
  Command("DRVVER", "CIA: DRIVER VERSION 1.20\r\n\r", place);
}

std::vector<std::string> DaemonTest::LogLines() {
  std::vector<std::string> lines;
  std::istringstream log(ReadFile(kLogFile));
  constexpr std::size_t kStamp = sizeof "2024-03-01 12:00:05";
  for (std::string line; std::getline(log, line) && !log.eof();) {
    lines.push_back(line.size() > kStamp ? line.substr(kStamp) : line);
  }
  return lines;
}

int DaemonTest::CountLogged(const std::string& line) {
  const auto lines = LogLines();
  return static_cast<int>(std::count(lines.begin(), lines.end(), line));
}

void DaemonTest::ExpectLog(const std::string& tag, const std::string& text, int times,
                           Place place) {
  const std::string line = "[" + tag + "] " + text;
  if (!WaitUntil([&] { return CountLogged(line) >= times; })) {
    FAIL_AT(place) << "not logged " << times << " times: " << line;
  }
}

void DaemonTest::ExpectNotLogged(const std::string& text, Place place) {
  for (const std::string& line : LogLines()) {
    if (line.find(text) != std::string::npos) FAIL_AT(place) << "logged: " << line;
  }
}

void DaemonTest::ExpectLogOrder(const std::vector<std::string>& lines, Place place) {
  const auto logged = LogLines();
  auto from = logged.begin();
  for (const std::string& line : lines) {
    const auto found = std::find(from, logged.end(), line);
    if (found == logged.end()) {
      FAIL_AT(place) << "not logged in its order: " << line;
      return;
    }
    from = found + 1;
  }
}
