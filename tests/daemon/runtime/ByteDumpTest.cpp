#include "runtime/ByteDump.h"

#include <gtest/gtest.h>

#include "support/Lists.h"

namespace {

template <class Print>
std::string Printed(Print print) {
  testing::internal::CaptureStdout();
  print();
  return testing::internal::GetCapturedStdout();
}

}  // namespace

TEST(ByteDump, PrintsAListWithItsSize) {
  EXPECT_EQ(Printed([] { PrintQList(List({0x41, 0x05})); }), "List size: 2\nContent: A:65|.:5|\n");
  EXPECT_EQ(Printed([] { PrintQList({}); }), "List size: 0\nContent: \n");
}

TEST(ByteDump, PrintsBytesFrom0x20OnAsCharacters) {
  EXPECT_EQ(Printed([] {
              PrintQList(List({0x00, 0x1F, 0x20, 0x7C, 0xFF}));
            }),
            "List size: 5\nContent: .:0|.:31| :32||:124|\xFF:255|\n");
}

TEST(ByteDump, PrintsABuffer) {
  EXPECT_EQ(Printed([] { PrintBuffer("A\x05z", 2); }), "Buffer content: A:65|.:5|\n");
  EXPECT_EQ(Printed([] { PrintBuffer("A", 0); }), "Buffer content: \n");
}

TEST(ByteDump, PrintsANamedBuffer) {
  EXPECT_EQ(Printed([] { PrintBufferID("A", 1, "RX"); }), "RX Buffer content: A:65|\n");
}

TEST(ByteDump, PrintsTheFirst999BytesOfALongerList) {
  std::string expected = "List size: 1200\nContent: ";
  for (int i = 0; i < 999; ++i) expected += "x:120|";
  EXPECT_EQ(Printed([] { PrintQList(QList(1200, 'x')); }), expected + "\n");
}
