// QList, the byte list that every message between threads is made of, and its
// conversions from and to text and buffers.
//
// Pure functions, free for any thread. None changes the list it is given. Bytes
// count as 0..255.
#pragma once

#include <cstddef>
#include <initializer_list>
#include <list>
#include <string>

using QList = std::list<char>;

// The text conversions hold this many characters at the most.
inline constexpr std::size_t kMaxText = 999;

// Length-prefixed: buf[0] says how many bytes follow it, zero bytes included.
QList Convert_BinBuff2QList(const char* buf);

// The bytes of a zero-terminated text, without the terminator.
QList Convert_CharBuff2QList(const char* s);

// The characters up to the first zero byte. An empty text gives one zero byte, so
// that it still is a message. More than kMaxText characters end the process.
QList Convert_String2QList(const std::string& s);

// A zero-terminated text. More than kMaxText characters end the process.
std::string Convert_CharBuff2String(const char* s);

// The bytes alone, without count or terminator; `out` has room for all of them.
void Convert_QList2BinBuff(const QList& l, char* out);

// The bytes up to the first zero byte, kMaxText of them at the most.
std::string Convert_QList2String(const QList& l);

// A list of the given byte values.
QList MakeQList(std::initializer_list<unsigned char> bytes);
