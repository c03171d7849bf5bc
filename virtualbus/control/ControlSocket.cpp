#include "control/ControlSocket.h"

#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstring>

namespace virtualbus {

namespace {

constexpr size_t kLongestLine = 4096;
constexpr int kBacklog = 16;
constexpr mode_t kOwnerOnly = 0177;  // taken away from a new socket: mode 0600

Problem Failed(const std::string& path) {
  if (errno == EADDRINUSE) return Problem(path + " exists and is not ours");
  return Problem("cannot listen on " + path + ": " + std::strerror(errno));
}

}  // namespace

ControlSocket::~ControlSocket() {
  for (const auto& [fd, session] : sessions_) close(fd);
  if (listener_ == -1) return;
  close(listener_);
  unlink(path_.c_str());
}

Problem ControlSocket::Listen(const std::string& path) {
  sockaddr_un address{};
  address.sun_family = AF_UNIX;
  if (path.size() >= sizeof address.sun_path) return Problem(path + " is too long for a socket");
  std::memcpy(address.sun_path, path.data(), path.size());

  const int fd = socket(AF_UNIX, SOCK_STREAM | SOCK_NONBLOCK | SOCK_CLOEXEC, 0);
  if (fd == -1) return Failed(path);
  const mode_t before = umask(kOwnerOnly);
  const int bound = bind(fd, reinterpret_cast<const sockaddr*>(&address), sizeof address);
  umask(before);
  if (bound != 0 || listen(fd, kBacklog) != 0) {
    Problem problem = Failed(path);
    close(fd);
    return problem;
  }
  listener_ = fd;
  path_ = path;
  bus_.loop.Watch(fd, [this] { OnConnect(); });
  bus_.journal.Listen([this](const Entry& entry) {
    if (entry.what != Entry::What::kFromHost) return;
    OnConnect();  // a script that connected before the frame may wait for it
    history_.Add(entry.frame);
    OnFrame();
  });
  return {};
}

void ControlSocket::OnConnect() {
  const int fd = accept4(listener_, nullptr, nullptr, SOCK_NONBLOCK | SOCK_CLOEXEC);
  if (fd == -1) return;
  sessions_[fd].seen = history_.End();
  bus_.loop.Watch(fd, [this, fd] { OnReadable(fd); });
}

void ControlSocket::OnReadable(int fd) {
  std::array<char, 4096> buffer;
  const ssize_t count = read(fd, buffer.data(), buffer.size());
  if (count < 0 && (errno == EAGAIN || errno == EINTR)) return;
  Session& session = sessions_.at(fd);
  if (count > 0) {
    session.input.append(buffer.data(), static_cast<size_t>(count));
  } else {
    session.ended = true;
    bus_.loop.Unwatch(fd);
  }
  RunLines(fd);
}

void ControlSocket::RunLines(int fd) {
  for (auto found = sessions_.find(fd); found != sessions_.end(); found = sessions_.find(fd)) {
    Session& session = found->second;
    if (!session.awaited.empty()) return;
    const size_t end = session.input.find('\n');
    if (end == std::string::npos) {
      if (session.input.size() > kLongestLine) Answer(fd, Problem("the line is too long"), {});
      if (session.ended || session.input.size() > kLongestLine) Close(fd);
      return;
    }
    const std::string line = session.input.substr(0, end);
    session.input.erase(0, end + 1);
    RunLine(fd, line);
  }
}

void ControlSocket::RunLine(int fd, const std::string& line) {
  const Reply reply = RunControlLine(bus_, line);
  Session& session = sessions_.at(fd);
  if (reply.mark) session.seen = history_.End();
  if (reply.quit) bus_.loop.Stop();
  if (reply.awaited.empty()) {
    Answer(fd, reply.problem, reply.lines);
    return;
  }
  session.awaited = reply.awaited;
  session.give_up = bus_.loop.After(reply.timeout, [this, fd] {
    EndWait(fd, Problem("no such frame came"));
    RunLines(fd);
  });
  OnFrame();
}

// Waits end after the frame has been answered, so that a script that waited sees what it changed.
void ControlSocket::OnFrame() {
  if (check_ == 0) check_ = bus_.loop.After({}, [this] { CheckWaits(); });
}

void ControlSocket::CheckWaits() {
  check_ = 0;
  std::vector<int> answered;
  for (auto& [fd, session] : sessions_) {
    if (session.awaited.empty()) continue;
    const auto found = history_.Find(session.seen, session.awaited);
    if (!found) continue;
    session.seen = *found + 1;
    answered.push_back(fd);
  }
  for (const int fd : answered) EndWait(fd, {});
  for (const int fd : answered) RunLines(fd);
}

void ControlSocket::EndWait(int fd, const Problem& problem) {
  Session& session = sessions_.at(fd);
  bus_.loop.Cancel(session.give_up);
  session.awaited.clear();
  Answer(fd, problem, {});
}

// A script that does not read its answers is disconnected.
void ControlSocket::Answer(int fd, const Problem& problem, const std::vector<std::string>& lines) {
  std::string text;
  for (const std::string& line : lines) text += line + '\n';
  text += problem ? "error: " + problem.Text() + '\n' : "ok\n";
  if (send(fd, text.data(), text.size(), MSG_NOSIGNAL) != static_cast<ssize_t>(text.size()))
    Close(fd);
}

void ControlSocket::Close(int fd) {
  const auto found = sessions_.find(fd);
  if (found == sessions_.end()) return;
  bus_.loop.Cancel(found->second.give_up);
  bus_.loop.Unwatch(fd);
  close(fd);
  sessions_.erase(found);
}

}  // namespace virtualbus
