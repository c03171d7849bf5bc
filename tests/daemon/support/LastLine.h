// What a process that ends at a limit leaves on standard error, as a regular expression:
// one line. An emulator adds a line of its own.
#pragma once

#include <string>

inline std::string LastLine(const std::string& end) {
  return "^qelm: [^\n]*" + end + "\n(qemu: [^\n]*\n)?$";
}
