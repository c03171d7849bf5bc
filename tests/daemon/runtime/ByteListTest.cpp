#include "runtime/ByteList.h"

#include <gtest/gtest.h>

#include <array>

#include "support/LastLine.h"
#include "support/Lists.h"

TEST(ByteList, ReadsALengthPrefixedBufferWithItsZeroBytes) {
  EXPECT_EQ(Convert_BinBuff2QList("\x03\x41\x00\x42\x43"), List({0x41, 0x00, 0x42}));
  EXPECT_EQ(Convert_BinBuff2QList("\x00\x41"), QList());
}

TEST(ByteList, ReadsTheLengthByteWithoutSign) {
  std::array<char, 256> buffer{};
  buffer.fill('x');
  buffer[0] = '\xFF';
  EXPECT_EQ(Convert_BinBuff2QList(buffer.data()), QList(255, 'x'));
}

TEST(ByteList, ReadsAZeroTerminatedText) {
  EXPECT_EQ(Convert_CharBuff2QList("AB"), List({0x41, 0x42}));
  EXPECT_EQ(Convert_CharBuff2QList(""), QList());
}

TEST(ByteList, AnEmptyStringBecomesOneZeroByte) {
  EXPECT_EQ(Convert_String2QList(""), List({0}));
  EXPECT_EQ(Convert_String2QList("AB"), List({0x41, 0x42}));
}

TEST(ByteList, AStringEndsAtItsFirstZeroByte) {
  EXPECT_EQ(Convert_String2QList(std::string("A\0B", 3)), List({0x41}));
  EXPECT_EQ(Convert_String2QList(std::string("\0B", 2)), List({0}));
}

TEST(ByteList, Takes999Characters) {
  const std::string text(999, 'x');
  EXPECT_EQ(Convert_String2QList(text), QList(999, 'x'));
  EXPECT_EQ(Convert_CharBuff2String(text.c_str()), text);
}

TEST(ByteListDeathTest, AThousandCharactersEndTheProcess) {
  const std::string text(1000, 'x');
  EXPECT_EXIT(Convert_String2QList(text), testing::KilledBySignal(SIGABRT),
              LastLine("999 characters"));
  EXPECT_EXIT(Convert_CharBuff2String(text.c_str()), testing::KilledBySignal(SIGABRT),
              LastLine("999 characters"));
}

TEST(ByteList, WritesTheBytesAloneIntoABuffer) {
  std::array<char, 4> out{'w', 'x', 'y', 'z'};
  Convert_QList2BinBuff(List({0x41, 0x00, 0x42}), out.data());
  EXPECT_EQ(out, (std::array<char, 4>{'A', '\0', 'B', 'z'}));
}

TEST(ByteList, AListAsTextEndsAtItsFirstZeroByte) {
  EXPECT_EQ(Convert_QList2String(List({0x41, 0x00, 0x42})), "A");
  EXPECT_EQ(Convert_QList2String(List({0x41, 0xFF})), "A\xFF");
  EXPECT_EQ(Convert_QList2String({}), "");
}

TEST(ByteList, AListAsTextStopsAt999Bytes) {
  EXPECT_EQ(Convert_QList2String(QList(1500, 'x')), std::string(999, 'x'));
}

TEST(ByteList, ConversionsLeaveTheListAlone) {
  const QList list = List({0x41, 0x42});
  QList passed = list;
  Convert_QList2String(passed);
  EXPECT_EQ(passed, list);
}

TEST(ByteList, MakesAListOfByteValues) {
  EXPECT_EQ(MakeQList({0x00, 0x7F, 0xFF}), List({0x00, 0x7F, 0xFF}));
  EXPECT_EQ(MakeQList({}), QList());
}
