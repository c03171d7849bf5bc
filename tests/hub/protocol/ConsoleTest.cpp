#include "protocol/Console.h"

#include <gtest/gtest.h>

namespace hub::protocol {
namespace {

class ConsoleTest : public testing::Test {
 protected:
  void Take(const Lines& lines) {
    for (const std::string& line : lines) console.Take(line);
  }

  void Greet() { Take({"QELM CAE interface is ready", "(Type HELP for help)", ">"}); }

  int ready = 0;
  std::vector<Lines> answers;
  std::string wire;
  Lines illegal;
  Lines unexpected;
  Console console{{
      .ready = [this] { ++ready; },
      .answer =
          [this](Answer answer) {
            answers.push_back(std::move(answer.lines));
            wire += answer.wire;
          },
      .illegal = [this](std::string command) { illegal.push_back(std::move(command)); },
      .unexpected = [this](std::string line) { unexpected.push_back(std::move(line)); },
  }};
};

TEST_F(ConsoleTest, IsReadyAtTheFirstPromptBehindTheGreeting) {
  Take({"QELM CAE interface is ready", "(Type HELP for help)"});
  EXPECT_FALSE(console.IsReady());
  Take({">"});
  EXPECT_TRUE(console.IsReady());
  EXPECT_EQ(ready, 1);
}

TEST_F(ConsoleTest, AnAnswerEndsWithThePrompt) {
  Greet();
  console.Ask();
  EXPECT_FALSE(console.IsReady());
  Take({"CIA: DRIVER VERSION 1.20", ">"});
  EXPECT_EQ(answers, (std::vector<Lines>{{"CIA: DRIVER VERSION 1.20"}}));
  EXPECT_TRUE(console.IsReady());
}

TEST_F(ConsoleTest, KeepsTheAnswerAsItWasWritten) {
  Greet();
  console.Ask();
  Take({"\rCIE: UNKNOWN COMMAND ", ">"});
  EXPECT_EQ(wire, "CIE: UNKNOWN COMMAND \r\n>\r\n\r");
  wire.clear();
  console.Ask();
  Take({"\rfirst", "of one item", "\rCOE:Illegal command -> a", "\r>", "\rsecond", "\r>"});
  EXPECT_EQ(wire, "first\r\nof one item\r\n\rsecond\r\n\r>\r\n\r");
  EXPECT_EQ(answers.back(), (Lines{"first", "of one item", "second"}));
}

TEST_F(ConsoleTest, AnIllegalCommandBringsAPromptThatIsNotTheAnswers) {
  Greet();
  console.Ask();
  Take({"COE:Illegal command -> a5x1", ">", "CIA: DRIVER VERSION 1.20", "COE:Illegal command -> b",
        ">", "more", ">"});
  EXPECT_EQ(answers, (std::vector<Lines>{{"CIA: DRIVER VERSION 1.20", "more"}}));
  EXPECT_EQ(illegal, (Lines{"a5x1", "b"}));
}

TEST_F(ConsoleTest, AnIllegalCommandComesAlsoWhenNobodyHasAsked) {
  Greet();
  Take({"COE:Illegal command -> a5x1", ">"});
  EXPECT_EQ(illegal, (Lines{"a5x1"}));
  EXPECT_TRUE(console.IsReady());
  console.Ask();
  Take({">"});
  EXPECT_EQ(answers, (std::vector<Lines>{{}}));
}

TEST_F(ConsoleTest, WhatAnEarlierClientLeftIsNobodys) {
  Take({">", "CIA: DRIVER VERSION 1.20", ">", "COE:Illegal command -> old", ">"});
  EXPECT_EQ(ready, 0);
  Greet();
  EXPECT_EQ(ready, 1);
  EXPECT_TRUE(illegal.empty());
  EXPECT_TRUE(answers.empty());
}

TEST_F(ConsoleTest, ALineThatNobodyAskedForIsUnexpected) {
  Greet();
  Take({"what is this"});
  EXPECT_EQ(unexpected, (Lines{"what is this"}));
  EXPECT_TRUE(console.IsReady());
}

TEST_F(ConsoleTest, AnAnswerWithoutEndIsCut) {
  Greet();
  console.Ask();
  for (int i = 0; i < 1001; ++i) console.Take("line");
  console.Take(">");
  ASSERT_EQ(answers.size(), 1U);
  EXPECT_EQ(answers[0].size(), 1000U);
}

TEST(ConsoleLine, IsOneReadOfTheDaemonAndDoesNotEndTheSession) {
  EXPECT_TRUE(IsConsoleLine("DISCOVER"));
  EXPECT_TRUE(IsConsoleLine(std::string(253, 'x')));
  EXPECT_FALSE(IsConsoleLine(std::string(254, 'x')));
  EXPECT_FALSE(IsConsoleLine("EXIT"));
  EXPECT_FALSE(IsConsoleLine("DRVVER\rEXIT"));
  EXPECT_FALSE(IsConsoleLine("DRVVER\nEXIT"));
  EXPECT_FALSE(IsConsoleLine(std::string("a\0b", 3)));
}

}  // namespace
}  // namespace hub::protocol
