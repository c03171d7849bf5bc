#include "runtime/ByteList.h"

#include <algorithm>
#include <cstring>
#include <iterator>

#include "runtime/Fatal.h"

QList Convert_BinBuff2QList(const char* buf) {
  const auto count = static_cast<unsigned char>(buf[0]);
  return {buf + 1, buf + 1 + count};
}

QList Convert_CharBuff2QList(const char* s) { return {s, s + std::strlen(s)}; }

QList Convert_String2QList(const std::string& s) {
  const std::size_t length = std::strlen(s.c_str());
  if (length > kMaxText) EndAtLimit("text over 999 characters");
  if (length == 0) return {'\0'};
  return {s.c_str(), s.c_str() + length};
}

std::string Convert_CharBuff2String(const char* s) {
  const std::size_t length = std::strlen(s);
  if (length > kMaxText) EndAtLimit("text over 999 characters");
  return {s, length};
}

void Convert_QList2BinBuff(const QList& l, char* out) { std::copy(l.begin(), l.end(), out); }

std::string Convert_QList2String(const QList& l) {
  const auto room = std::next(l.begin(), static_cast<long>(std::min(l.size(), kMaxText)));
  return {l.begin(), std::find(l.begin(), room, '\0')};
}

QList MakeQList(std::initializer_list<unsigned char> bytes) {
  QList list;
  for (const unsigned char byte : bytes) list.push_back(static_cast<char>(byte));
  return list;
}
