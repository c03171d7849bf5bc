#include "BusProcess.h"

#include <fcntl.h>
#include <poll.h>
#include <signal.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cstring>
#include <fstream>
#include <iterator>
#include <stdexcept>

namespace virtualbus {

namespace {

// One read, waited for; throws when nothing comes.
size_t ReadSome(int fd, char* buffer, size_t size) {
  pollfd entry{fd, POLLIN, 0};
  const auto bound = std::chrono::duration_cast<std::chrono::milliseconds>(kBound).count();
  if (poll(&entry, 1, static_cast<int>(bound)) != 1) throw std::runtime_error("nothing came");
  const ssize_t count = read(fd, buffer, size);
  if (count <= 0) throw std::runtime_error("the other end has gone");
  return static_cast<size_t>(count);
}

}  // namespace

TempFolder::TempFolder() {
  std::string name = (std::filesystem::temp_directory_path() / "virtualbus.XXXXXX").string();
  if (mkdtemp(name.data()) == nullptr) throw std::runtime_error("no temporary folder");
  folder_ = name;
}

TempFolder::~TempFolder() {
  std::error_code ignored;
  std::filesystem::remove_all(folder_, ignored);
}

std::string TempFolder::Write(const std::string& name, const std::string& text) const {
  std::ofstream(Path(name)) << text;
  return Path(name);
}

std::string TempFolder::Read(const std::string& path) {
  std::ifstream file(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), {}};
}

Program::Program(const TempFolder& folder, std::vector<std::string> arguments)
    : out_(folder.Path("out")), err_(folder.Path("err")) {
  arguments.insert(arguments.begin(), QELM_BUS);
  std::vector<char*> words;
  for (std::string& argument : arguments) words.push_back(argument.data());
  words.push_back(nullptr);
  pid_ = fork();
  if (pid_ != 0) return;
  const int out = open(out_.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0600);
  const int err = open(err_.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0600);
  dup2(out, STDOUT_FILENO);
  dup2(err, STDERR_FILENO);
  execv(QELM_BUS, words.data());
  _exit(127);
}

Program::~Program() {
  if (!IsRunning()) return;
  Signal(SIGTERM);
  WaitForExit();
}

bool Program::IsRunning() {
  if (pid_ != -1 && waitpid(pid_, &status_, WNOHANG) == pid_) pid_ = -1;
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

void Program::Signal(int number) const { kill(pid_, number); }

Host::Host(const std::string& device) : fd_(open(device.c_str(), O_RDWR | O_NOCTTY | O_CLOEXEC)) {
  if (fd_ == -1) throw std::runtime_error("cannot open " + device);
}

Host::~Host() { close(fd_); }

void Host::SendRaw(const Bytes& bytes) const {
  ASSERT_EQ(write(fd_, bytes.data(), bytes.size()), static_cast<ssize_t>(bytes.size()));
}

void Host::Send(const Bytes& payload) const {
  Bytes bytes(payload.size() + 1);
  bytes[0] = static_cast<uint8_t>(payload.size());
  std::copy(payload.begin(), payload.end(), bytes.begin() + 1);
  SendRaw(bytes);
}

Bytes Host::Receive(size_t count) const {
  Bytes bytes;
  while (bytes.size() < count) {
    std::array<char, 256> buffer;
    const size_t wanted = std::min(buffer.size(), count - bytes.size());
    const size_t got = ReadSome(fd_, buffer.data(), wanted);
    for (size_t i = 0; i < got; ++i) bytes.push_back(static_cast<uint8_t>(buffer[i]));
  }
  return bytes;
}

Bytes Host::ReceiveReply() const { return Receive(Receive(1)[0]); }

Bytes Host::Ask(const Bytes& payload) const {
  Send(payload);
  return ReceiveReply();
}

Script::Script(const std::string& path) : fd_(socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0)) {
  sockaddr_un address{};
  address.sun_family = AF_UNIX;
  std::strncpy(address.sun_path, path.c_str(), sizeof address.sun_path - 1);
  if (connect(fd_, reinterpret_cast<const sockaddr*>(&address), sizeof address) != 0) {
    throw std::runtime_error("cannot connect to " + path);
  }
}

Script::~Script() { close(fd_); }

void Script::Send(const std::string& text) const {
  ASSERT_EQ(send(fd_, text.data(), text.size(), MSG_NOSIGNAL), static_cast<ssize_t>(text.size()));
}

std::string Script::Answer() {
  std::string answer;
  while (true) {
    const size_t end = received_.find('\n');
    if (end == std::string::npos) {
      std::array<char, 4096> buffer;
      received_.append(buffer.data(), ReadSome(fd_, buffer.data(), buffer.size()));
      continue;
    }
    const std::string line = received_.substr(0, end);
    received_.erase(0, end + 1);
    answer += line;
    if (line == "ok" || line.starts_with("error: ")) return answer;
    answer += '\n';
  }
}

std::string Script::Tell(const std::string& line) {
  Send(line + '\n');
  return Answer();
}

void BusTest::Start(std::vector<std::string> arguments) {
  const std::string link = folder_.Path("ttyUSB0");
  const std::string control = folder_.Path("control");
  arguments.insert(arguments.begin(), {"--link", link, "--control", control});
  bus_ = std::make_unique<Program>(folder_, arguments);
  ASSERT_TRUE(WaitUntil([&] { return std::filesystem::exists(link) || !bus_->IsRunning(); }));
  ASSERT_TRUE(bus_->IsRunning()) << bus_->Errors();
  host_ = std::make_unique<Host>(link);
  script_ = std::make_unique<Script>(control);
}

void BusTest::ExpectOutput(const std::string& text) const {
  EXPECT_TRUE(WaitUntil([&] { return bus_->Output().find(text) != std::string::npos; }))
      << text << "\nis not in\n"
      << bus_->Output();
}

}  // namespace virtualbus
