#include "protocol/LineReader.h"

#include <gtest/gtest.h>

#include <vector>

namespace hub::protocol {
namespace {

class LineReaderTest : public testing::Test {
 protected:
  void Take(std::string_view bytes) {
    reader.Take(bytes, [this](std::string line) { lines.push_back(std::move(line)); });
  }

  LineReader reader{10};
  std::vector<std::string> lines;
};

using Lines = std::vector<std::string>;

TEST_F(LineReaderTest, CutsAtTheLineFeedAndDropsEveryCarriageReturn) {
  Take("a3b0d40\r\n\ra3b0d00\r\n\r");
  EXPECT_EQ(lines, (Lines{"a3b0d40", "a3b0d00"}));
}

TEST_F(LineReaderTest, JoinsWhatComesInPieces) {
  for (const char* piece : {"a3b", "0d4", "0", "\r", "\n", "\r"}) Take(piece);
  EXPECT_EQ(lines, (Lines{"a3b0d40"}));
  EXPECT_EQ(reader.Unfinished(), "");
}

TEST_F(LineReaderTest, ShowsWhatHasNoEndYet) {
  Take("one\ntw");
  EXPECT_EQ(lines, (Lines{"one"}));
  EXPECT_EQ(reader.Unfinished(), "tw");
}

TEST_F(LineReaderTest, AnEmptyLineIsALine) {
  Take("\n\r\n");
  EXPECT_EQ(lines, (Lines{"", ""}));
}

TEST_F(LineReaderTest, TakesTheLongestLine) {
  Take("0123456789\r\n");
  EXPECT_EQ(lines, (Lines{"0123456789"}));
  EXPECT_EQ(reader.LostLines(), 0U);
}

TEST_F(LineReaderTest, DropsALineThatIsTooLongUpToItsEnd) {
  Take("0123456789X");
  EXPECT_EQ(reader.Unfinished(), "");
  Take("more of it\nnext\n");
  EXPECT_EQ(lines, (Lines{"next"}));
  EXPECT_EQ(reader.LostLines(), 1U);
}

TEST_F(LineReaderTest, MarksTheLinesThatBeginAnItem) {
  LineReader marking{10, LineReader::ItemMarks::kKeep};
  // Items: "one", "two" and "three" in one, an empty line and "four" in one, "five".
  for (const char* piece : {"one\r\n\rtwo\r\nthree\r\n", "\r\r\nfour\r\n\r", "five\r\n\r\n"})
    marking.Take(piece, [this](std::string line) { lines.push_back(std::move(line)); });
  EXPECT_EQ(lines, (Lines{"one", "\rtwo", "three", "\r", "four", "\rfive", ""}));
}

}  // namespace
}  // namespace hub::protocol
