#include "Wire.h"

#include <unistd.h>

#include <iterator>
#include <utility>

namespace {

Wire* plugged = nullptr;

}  // namespace

extern "C" {
ssize_t __real_read(int fd, void* buffer, size_t size);
ssize_t __wrap_read(int fd, void* buffer, size_t size);
ssize_t __real_write(int fd, const void* buffer, size_t size);
ssize_t __wrap_write(int fd, const void* buffer, size_t size);
int __wrap_close(int fd);
int __wrap_sched_yield();
int __real_close(int fd);

ssize_t __wrap_read(int fd, void* buffer, size_t size) {
  if (fd != Wire::kDescriptor || plugged == nullptr) return __real_read(fd, buffer, size);
  return static_cast<ssize_t>(plugged->Read(static_cast<char*>(buffer), size));
}

ssize_t __wrap_write(int fd, const void* buffer, size_t size) {
  if (fd != Wire::kDescriptor || plugged == nullptr) return __real_write(fd, buffer, size);
  plugged->Write({static_cast<const char*>(buffer), size});
  return static_cast<ssize_t>(size);
}

int __wrap_close(int fd) { return fd == Wire::kDescriptor ? 0 : __real_close(fd); }

// There is no other thread to yield to.
int __wrap_sched_yield() { return 0; }
}

Wire::Wire(Adapter adapter) : OnFrame(std::move(adapter)) { plugged = this; }

Wire::~Wire() { plugged = nullptr; }

std::size_t Wire::Read(char* buffer, std::size_t size) {
  ++ReadCount;
  if (Line.empty_reads > 0) {
    --Line.empty_reads;
    return 0;
  }
  if (Line.pieces.empty()) return 0;
  std::string& piece = Line.pieces.front();
  const std::size_t count = piece.copy(buffer, size);
  piece.erase(0, count);
  if (piece.empty()) Line.pieces.pop_front();
  return count;
}

// What is left of an earlier answer is read before this one.
void Wire::Write(const std::string& bytes) {
  Answer answer = OnFrame(bytes);
  std::move(answer.pieces.begin(), answer.pieces.end(), std::back_inserter(Line.pieces));
  Line.empty_reads = answer.empty_reads;
  ReadCount = 0;
}
