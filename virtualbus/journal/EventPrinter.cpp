#include "journal/EventPrinter.h"

#include <poll.h>
#include <unistd.h>

namespace virtualbus {

namespace {

constexpr size_t kMostWaiting = 1000;
constexpr std::chrono::milliseconds kRetry{20};

// A line is shorter than what a pipe that is ready takes at once.
bool CanWrite(int fd) {
  pollfd entry{fd, POLLOUT, 0};
  return poll(&entry, 1, 0) == 1 && (entry.revents & POLLOUT) != 0;
}

}  // namespace

void EventPrinter::Print(const Entry& entry) {
  if (waiting_.size() == kMostWaiting) {
    ++dropped_;
    return;
  }
  waiting_.push_back(FormatEntryWithMeaning(entry) + '\n');
  WriteWaiting();
}

void EventPrinter::WriteWaiting() {
  while (!waiting_.empty() && CanWrite(fd_)) {
    WriteLine(waiting_.front());
    waiting_.pop_front();
    if (waiting_.empty() && dropped_ > 0) {
      waiting_.push_back("# " + std::to_string(dropped_) + " lines dropped\n");
      dropped_ = 0;
    }
  }
  loop_.Cancel(retry_);
  if (!waiting_.empty()) retry_ = loop_.After(kRetry, [this] { WriteWaiting(); });
}

// When the reader has gone, its lines are lost; the bus goes on serving its host.
void EventPrinter::WriteLine(const std::string& line) {
  [[maybe_unused]] const ssize_t written = write(fd_, line.data(), line.size());
}

}  // namespace virtualbus
