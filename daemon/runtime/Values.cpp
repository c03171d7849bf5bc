#include "runtime/Values.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <limits>

#include "runtime/Fatal.h"

unsigned char HexCharToByte(char c) {
  if (c >= '0' && c <= '9') return static_cast<unsigned char>(c - '0');
  if (c >= 'A' && c <= 'F') return static_cast<unsigned char>(c - 'A' + 10);
  return 0;
}

unsigned char HexNum2Byte(char hi, char lo) {
  return static_cast<unsigned char>(HexCharToByte(hi) * 16 + HexCharToByte(lo));
}

unsigned char Convert_HexStr2Byte(const std::string& s) {
  if (std::strlen(s.c_str()) > 4) EndAtLimit("hexadecimal byte text over 4 characters");
  if (s.empty()) return 0;
  return s.size() == 1 ? HexNum2Byte('0', s[0]) : HexNum2Byte(s[0], s[1]);
}

long ATOL(const std::string& s) { return std::strtol(s.c_str(), nullptr, 10); }

int ATOI(const std::string& s) {
  using Limits = std::numeric_limits<int>;
  return static_cast<int>(std::clamp<long>(ATOL(s), Limits::min(), Limits::max()));
}

bool ATOB(const std::string& s) { return s == "True" || s == "true" || s == "TRUE"; }

std::string BTOA(bool b) { return b ? "TRUE" : "FALSE"; }

std::string ITOA(int n) { return std::to_string(n); }
