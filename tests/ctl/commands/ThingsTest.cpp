#include "commands/Things.h"

#include <gtest/gtest.h>

#include "base/Failure.h"

namespace ctl {
namespace {

const std::vector<Thing> kChannels{
    {"5.0", "Lamp"}, {"5.1", "Door"}, {"5.2", ""}, {"6.0", "door"}, {"E.1", "Küche"}};

std::string WhyNot(const std::string& word) {
  try {
    return FindByName(kChannels, word, "channel");
  } catch (const Failure& failure) {
    EXPECT_EQ(failure.Status(), kUsage);
    return failure.what();
  }
}

TEST(Things, AddressesMayBeWrittenSmall) {
  EXPECT_EQ(AsCard("e"), "E");
  EXPECT_EQ(AsChannel("e.15"), "E.15");
  for (const char* word : {"", "G", "10", "5.", "5.x", ".1", "lamp", "5.-1"}) {
    EXPECT_EQ(AsCard(word), "") << word;
    EXPECT_EQ(AsChannel(word), "") << word;
  }
}

TEST(Things, CodesAreWholeBytes) {
  EXPECT_EQ(AsCode("434f"), "434F");
  EXPECT_EQ(AsCode("0A"), "0A");
  for (const char* word : {"", "5", "434", "43 4F", "5.0", "TV"})
    EXPECT_EQ(AsCode(word), "") << word;
}

TEST(Things, AreFoundByNameWhateverTheCapitals) {
  EXPECT_EQ(FindByName(kChannels, "lamp", "channel"), "5.0");
  EXPECT_EQ(FindByName(kChannels, "küche", "channel"), "E.1");
}

TEST(Things, AnAmbiguousNameListsWhatItCouldBe) {
  EXPECT_EQ(WhyNot("door"),
            "more than one channel is called \"door\": say 5.1 (Door) or 6.0 (door)");
}

TEST(Things, AnUnknownNameSaysWhatIsNear) {
  EXPECT_EQ(WhyNot("lmap"), "no channel is called \"lmap\"; is it \"Lamp\"?");
  EXPECT_EQ(WhyNot("heating"), "no channel is called \"heating\"; \"qelmctl cards\" lists them");
}

TEST(Things, WhatHasNoNameIsNotFoundByNone) {
  EXPECT_EQ(WhyNot(""), "no channel is called \"\"; \"qelmctl cards\" lists them");
}

}  // namespace
}  // namespace ctl
