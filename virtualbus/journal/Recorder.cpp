#include "journal/Recorder.h"

#include <cerrno>
#include <cstring>

namespace virtualbus {

namespace {

constexpr std::chrono::milliseconds kFlush{500};

}  // namespace

Recorder::~Recorder() {
  if (file_ != nullptr) std::fclose(file_);
}

Problem Recorder::Begin(const std::string& path, Journal& journal) {
  file_ = std::fopen(path.c_str(), "wxe");
  if (file_ == nullptr) return Problem("cannot record to " + path + ": " + std::strerror(errno));
  std::fputs("# seconds, > from the host or < to it, bytes without the length byte\n", file_);
  journal.Listen([this](const Entry& entry) { Write(entry); });
  return {};
}

void Recorder::Write(const Entry& entry) {
  std::fputs((FormatEntry(entry) + '\n').c_str(), file_);
  if (flush_ != 0) return;
  flush_ = loop_.After(kFlush, [this] {
    flush_ = 0;
    std::fflush(file_);
  });
}

}  // namespace virtualbus
