#include "support/ReadHook.h"

#include <unistd.h>

#include <atomic>

namespace {

std::atomic<ReadHook*> active{nullptr};

}  // namespace

// The linker leads every read of the code under test here, and __real_read past it.
extern "C" {
ssize_t __real_read(int fd, void* buffer, size_t size);
ssize_t __wrap_read(int fd, void* buffer, size_t size);

ssize_t __wrap_read(int fd, void* buffer, size_t size) {
  if (const ReadHook* hook = active) hook->Run();
  return __real_read(fd, buffer, size);
}
}

ReadHook::ReadHook(std::function<void()> action) : action_(std::move(action)) { active = this; }

ReadHook::~ReadHook() { active = nullptr; }
