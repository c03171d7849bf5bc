#include "BusProcess.h"

#include <fcntl.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <filesystem>
#include <utility>

#include "kit/Proc.h"

namespace virtualbus {

Program::Program(const TempDir& folder, std::vector<std::string> arguments)
    : Program(folder, QELM_BUS, std::move(arguments)) {}

Program::Program(const TempDir& folder, const std::string& binary,
                 std::vector<std::string> arguments)
    : out_(folder.Path("out")), err_(folder.Path("err")) {
  arguments.insert(arguments.begin(), binary);
  std::vector<char*> words;
  for (std::string& argument : arguments) words.push_back(argument.data());
  words.push_back(nullptr);
  pid_ = fork();
  if (pid_ != 0) return;
  const int out = open(out_.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0600);
  const int err = open(err_.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0600);
  dup2(out, STDOUT_FILENO);
  dup2(err, STDERR_FILENO);
  execv(binary.c_str(), words.data());
  _exit(127);
}

Program::~Program() {
  if (IsRunning()) {
    Signal(SIGTERM);
    WaitForExit();
  }
  const std::string errors = Errors();
  EXPECT_FALSE(HasSanitizerReport(errors)) << errors;
}

// Somebody else may have waited for it: whoever ends all children of the test.
bool Program::IsRunning() {
  if (pid_ != -1 && waitpid(pid_, &status_, WNOHANG) != 0) pid_ = -1;
  return pid_ != -1;
}

int Program::WaitForExit() {
  if (!WaitUntil([this] { return !IsRunning(); })) {
    ADD_FAILURE() << "it does not end";
    Signal(SIGKILL);
    waitpid(pid_, &status_, 0);
    pid_ = -1;
  }
  return WIFEXITED(status_) ? WEXITSTATUS(status_) : -1;
}

void Program::Signal(int number) const {
  if (pid_ != -1) kill(pid_, number);  // -1 would be everybody
}

void Host::SendRaw(const Bytes& bytes) { line_.Send(std::string(bytes.begin(), bytes.end())); }

void Host::Send(const Bytes& payload) {
  Bytes bytes = payload;
  bytes.insert(bytes.begin(), static_cast<uint8_t>(payload.size()));
  SendRaw(bytes);
}

Bytes Host::Receive(size_t count) {
  const std::string bytes = line_.Read(count);
  return {bytes.begin(), bytes.end()};
}

Bytes Host::ReceiveReply() { return Receive(Receive(1)[0]); }

Bytes Host::Ask(const Bytes& payload) {
  Send(payload);
  return ReceiveReply();
}

std::string Script::Answer() {
  std::string answer;
  while (true) {
    const std::string line = socket_.ReadUntil("\n");
    answer += line;
    if (line != "ok\n" && !line.starts_with("error: ")) continue;
    answer.pop_back();
    return answer;
  }
}

std::string Script::Order(const std::string& line) {
  Send(line + '\n');
  return Answer();
}

void BusTest::Start(std::vector<std::string> arguments) {
  const std::string link = folder.Path("ttyUSB0");
  const std::string control = folder.Path("control");
  arguments.insert(arguments.begin(), {"--link", link, "--control", control});
  bus = std::make_unique<Program>(folder, arguments);
  ASSERT_TRUE(WaitUntil([&] { return std::filesystem::exists(link) || !bus->IsRunning(); }));
  ASSERT_TRUE(bus->IsRunning()) << bus->Errors();
  host = std::make_unique<Host>(link);
  script = std::make_unique<Script>(control);
}

void BusTest::ExpectOutput(const std::string& text) const {
  EXPECT_TRUE(WaitUntil([&] { return bus->Output().find(text) != std::string::npos; }))
      << text << "\nis not in\n"
      << bus->Output();
}

}  // namespace virtualbus
