// The conversions of byte lists and values: what goes one way comes back the other.
#include <algorithm>
#include <climits>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <string>
#include <vector>

#include "Finding.h"
#include "StandIns.h"
#include "bus/ReplyError.h"
#include "config/Speed.h"
#include "runtime/ByteDump.h"
#include "runtime/ByteList.h"
#include "runtime/Values.h"

namespace {

template <class Action>
bool EndsProcess(Action action) {
  try {
    action();
  } catch (const ProcessEnd&) {
    return true;
  }
  return false;
}

void CheckText(const std::string& bytes) {
  const std::string text = bytes.c_str();
  const QList list = Convert_CharBuff2QList(text.c_str());
  Require(Convert_QList2String(list) == text.substr(0, kMaxText), "a text changes as a list");
  Require(Convert_QList2String({bytes.begin(), bytes.end()}) == text.substr(0, kMaxText),
          "a list does not end at its first zero");

  const bool is_long = text.size() > kMaxText;
  QList converted;
  std::string copy;
  Require(EndsProcess([&] { converted = Convert_String2QList(bytes); }) == is_long &&
              EndsProcess([&] { copy = Convert_CharBuff2String(bytes.c_str()); }) == is_long,
          "a text meets another limit");
  if (is_long) return;
  Require(copy == text, "a text changes as a string");
  Require(text.empty() ? converted == QList{'\0'} : converted == list, "a message changes");
}

void CheckBuffer(const std::string& bytes) {
  std::string buffer = bytes.substr(0, 255);
  buffer.insert(buffer.begin(), static_cast<char>(buffer.size()));
  const std::vector<char> exact(buffer.begin(), buffer.end());
  const QList list = Convert_BinBuff2QList(exact.data());
  Require(list.size() + 1 == exact.size(), "a buffer is miscounted");
  std::vector<char> out(list.size());
  Convert_QList2BinBuff(list, out.data());
  Require(std::equal(out.begin(), out.end(), exact.begin() + 1), "a buffer changes as a list");

  const int error = GetQListError(list);
  Require(error >= 0 && error <= 6, "a reply has no kind");
  Require(list.empty() ? error == 5 : error == GetQListError({list.front()}),
          "more than the first byte counts");
  PrintQList({bytes.begin(), bytes.end()});
  PrintBufferID(exact.data(), static_cast<int>(exact.size()), "fuzz");
}

void CheckDigits(const std::string& bytes) {
  const std::string text = bytes.c_str();
  unsigned char value = 0;
  const bool ends = EndsProcess([&] { value = Convert_HexStr2Byte(bytes); });
  Require(ends == (text.size() > 4), "a byte text meets another limit");
  for (const char c : bytes) {
    const auto byte = static_cast<unsigned char>(c);
    char digits[3];
    std::snprintf(digits, sizeof digits, "%02X", byte);
    Require(HexNum2Byte(digits[0], digits[1]) == byte, "two digits read as another byte");
    Require(Convert_HexStr2Byte(digits) == byte, "a byte text reads as another byte");
    Require(HexCharToByte(c) < 16, "a digit is too large");
  }
}

void CheckNumbers(const std::string& bytes) {
  const long number = ATOL(bytes);
  const int clamped = ATOI(bytes);
  Require(clamped == std::clamp<long>(number, INT_MIN, INT_MAX), "a number is not clamped");
  Require(ATOI(ITOA(clamped)) == clamped && ATOL(ITOA(clamped)) == clamped, "a number changes");
  Require(ATOB(BTOA(ATOB(bytes))) == ATOB(bytes), "a boolean changes");

  const int delay = SpeedDelay(number);
  Require(number < 1 || number > 100 || (delay >= 1 && delay <= 5000), "a delay is out of range");
  Require(number == LONG_MAX || delay >= SpeedDelay(number + 1), "more speed means more delay");
}

}  // namespace

extern "C" int LLVMFuzzerInitialize(int* /*argc*/, char*** /*argv*/) {
  return std::freopen("/dev/null", "w", stdout) != nullptr ? 0 : 1;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string bytes(data, data + size);
  CheckText(bytes);
  CheckBuffer(bytes);
  CheckDigits(bytes);
  CheckNumbers(bytes);
  return 0;
}
