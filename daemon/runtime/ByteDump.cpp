#include "runtime/ByteDump.h"

#include <algorithm>
#include <cstdio>
#include <iterator>

namespace {

void PrintEntry(char c) {
  const auto byte = static_cast<unsigned char>(c);
  if (byte < 0x20)
    std::printf(".:%d|", byte);
  else
    std::printf("%c:%d|", byte, byte);
}

}  // namespace

void PrintQList(const QList& l) {
  const auto shown = static_cast<long>(std::min(l.size(), kMaxText));
  std::printf("List size: %zu\nContent: ", l.size());
  std::for_each(l.begin(), std::next(l.begin(), shown), PrintEntry);
  std::printf("\n");
}

void PrintBuffer(const char* buf, int len) {
  std::printf("Buffer content: ");
  std::for_each(buf, buf + std::max(len, 0), PrintEntry);
  std::printf("\n");
}

void PrintBufferID(const char* buf, int len, const char* id) {
  std::printf("%s ", id);
  PrintBuffer(buf, len);
}
