#include "link/LogFollower.h"

#include <fcntl.h>
#include <sys/inotify.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <boost/asio/buffer.hpp>
#include <boost/asio/redirect_error.hpp>
#include <boost/asio/use_awaitable.hpp>
#include <filesystem>
#include <utility>

namespace hub::link {

namespace asio = boost::asio;

namespace {

constexpr size_t kLongestLogLine = 1000;  // the daemon writes none that is longer

// What is older says nothing that still holds: a daemon without an adapter writes this in hours.
constexpr off_t kMostOld = 1'000'000;

constexpr uint32_t kFolderEvents = IN_CREATE | IN_MOVED_TO | IN_ATTRIB | IN_ONLYDIR;
constexpr uint32_t kFileEvents = IN_MODIFY | IN_ATTRIB | IN_MOVE_SELF | IN_DELETE_SELF;

}  // namespace

LogFollower::LogFollower(asio::any_io_executor executor, std::string path, Sinks sinks)
    : path_(std::move(path)),
      sinks_(std::move(sinks)),
      changes_(std::move(executor)),
      reader_(kLongestLogLine) {
  const int changes = inotify_init1(IN_NONBLOCK | IN_CLOEXEC);
  if (changes >= 0) changes_.assign(changes);
}

LogFollower::~LogFollower() { Close(); }

void LogFollower::Look() {
  if (path_.empty()) return;
  Watch();
  if (IsOpen() && !IsReplaced()) {
    ReadOn(sinks_.line);
  } else {
    if (IsOpen()) ReadOn(sinks_.line);  // what was written before it was moved away
    Close();
    Open();
  }
  sinks_.caught_up();
}

void LogFollower::Watch() {
  if (!changes_.is_open() || folder_watch_ >= 0) return;
  const std::filesystem::path folder = std::filesystem::path(path_).parent_path();
  folder_watch_ = inotify_add_watch(changes_.native_handle(), folder.c_str(), kFolderEvents);
}

void LogFollower::Open() {
  file_ = open(path_.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK);
  if (!IsOpen()) return;
  if (changes_.is_open())
    file_watch_ = inotify_add_watch(changes_.native_handle(), path_.c_str(), kFileEvents);
  if (std::exchange(was_open_, true)) return ReadOn(sinks_.line);
  struct stat status {};
  if (fstat(file_, &status) == 0)
    lseek(file_, std::max<off_t>(status.st_size - kMostOld, 0), SEEK_SET);
  ReadOn(sinks_.old_line);
  sinks_.old_read();
}

void LogFollower::Close() {
  if (!IsOpen()) return;
  if (changes_.is_open()) inotify_rm_watch(changes_.native_handle(), file_watch_);
  close(std::exchange(file_, -1));
  reader_ = protocol::LineReader(kLongestLogLine);
}

bool LogFollower::IsReplaced() const {
  struct stat open_file {};
  struct stat named {};
  if (fstat(file_, &open_file) != 0) return true;
  if (open_file.st_size < lseek(file_, 0, SEEK_CUR)) return true;  // emptied
  return stat(path_.c_str(), &named) == 0 &&
         (named.st_ino != open_file.st_ino || named.st_dev != open_file.st_dev);
}

void LogFollower::ReadOn(const std::function<void(const protocol::LogLine& line)>& sink) {
  std::array<char, 4096> bytes{};
  for (ssize_t count = 0; (count = read(file_, bytes.data(), bytes.size())) > 0;)
    reader_.Take({bytes.data(), static_cast<size_t>(count)},
                 [&sink](const std::string& line) { sink(protocol::ParseLogLine(line)); });
}

std::chrono::seconds LogFollower::AgeOfLastLine() const {
  struct stat status {};
  if (!IsOpen() || fstat(file_, &status) != 0) return std::chrono::seconds::max();
  const auto now = std::chrono::system_clock::now();
  return std::chrono::duration_cast<std::chrono::seconds>(
      now - std::chrono::system_clock::from_time_t(status.st_mtime));
}

asio::awaitable<void> LogFollower::Run() {
  boost::system::error_code error;
  auto token = asio::redirect_error(asio::use_awaitable, error);
  std::array<char, 4096> events{};
  const auto buffer = asio::buffer(events);
  while (changes_.is_open()) {
    co_await changes_.async_read_some(buffer, token);
    if (error) co_return;
    Look();
  }
}

void LogFollower::Stop() {
  boost::system::error_code ignored;
  changes_.close(ignored);
}

}  // namespace hub::link
