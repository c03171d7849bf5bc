// Bytes as a test writes them down, and as they are read in its messages.
#pragma once

#include <cstdint>
#include <cstdio>
#include <string>
#include <vector>

using Bytes = std::vector<std::uint8_t>;

// Upper-case digits, with zeros in front: "0A".
inline std::string Hex(long value, int digits = 2) {
  char text[20];
  std::snprintf(text, sizeof text, "%0*lX", digits, static_cast<unsigned long>(value));
  return text;
}

// "10 05 FF"
inline std::string Hex(const Bytes& bytes) {
  std::string text;
  for (const std::uint8_t byte : bytes) text += (text.empty() ? "" : " ") + Hex(byte);
  return text;
}
