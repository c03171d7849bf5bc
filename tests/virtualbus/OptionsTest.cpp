#include "BusProcess.h"

namespace virtualbus {
namespace {

struct BadStart {
  std::vector<std::string> arguments;
  std::string says;  // one line
};

const std::string kKinds =
    "servo, digital-input, motor, digital-output, keys, ir, lcd, analogue-input";

TEST(Options, WhatMakesNoSenseIsOneLineAndStatusTwo) {
  const BadStart bad_starts[] = {
      {{"--nonsense"}, "The following argument was not expected: --nonsense"},
      {{"extra"}, "The following argument was not expected: extra"},
      {{"--card"}, "--card: 1 required ADDR=KIND missing"},
      {{"--card", "3"}, "--card 3: ADDR=KIND is meant"},
      {{"--card", "G=servo"}, "--card G=servo: the address is one digit, 0 to F"},
      {{"--card", "3=toaster"}, "--card 3=toaster: the kinds are " + kKinds},
      {{"--card", "3=servo", "--card", "3=lcd"}, "--card 3=lcd: address 3 is taken"},
      {{"--wire", "12"}, "--wire: Value 12 not in range 300 to 4000000"},
      {{"--wire", "fast"}, "--wire: Value fast not in range 300 to 4000000"},
      {{"--seed", "x"}, "Could not convert: --seed = x"},
      {{"--fast"}, "--fast requires --replay"},
      {{"--replay", "a", "--card", "3=servo"}, "--card excludes --replay"},
      {{"--replay", "/nowhere"}, "/nowhere: cannot be read"},
      {{"--bus", "/nowhere"}, "/nowhere: cannot be read"},
      {{"--record", "/no/where"}, "cannot record to /no/where: No such file or directory"},
      {{"--do", "dance"}, "\"dance\": unknown command \"dance\" (try help)"},
      {{"--do", "wait frame 10"}, "\"wait frame 10\": nothing to wait for yet"},
  };
  for (const BadStart& bad : bad_starts) {
    const TempDir folder;
    Program program(folder, bad.arguments);
    EXPECT_EQ(program.WaitForExit(), 2) << bad.says;
    EXPECT_EQ(program.Errors(), "qelm-bus: " + bad.says + "\n");
  }
}

TEST(Options, HelpNamesEveryOptionAndKind) {
  const TempDir folder;
  Program program(folder, {"--help"});
  EXPECT_EQ(program.WaitForExit(), 0);
  const std::string help = program.Output();
  for (const char* word : {"--card ADDR=KIND", "--bus FILE", "--link PATH", "--wire BAUD",
                           "--control PATH", "--do LINE", "--seed NUMBER", "--record FILE",
                           "--replay FILE", "--fast", "--plain", "0=servo", "F=analogue-input"}) {
    EXPECT_NE(help.find(word), std::string::npos) << word;
  }
  EXPECT_EQ(program.Errors(), "");
}

using OptionsTaken = BusTest;

TEST_F(OptionsTaken, TheCardsNamedAreTheOnlyOnes) {
  Start({"--card", "1=servo", "--card", "A=ir"});
  EXPECT_EQ(Ask({0x30}), (Bytes{0x31, 0, 0x05, 0, 0, 0, 0, 0, 0, 0, 0, 0x0A, 0, 0, 0, 0, 0}));
}

TEST_F(OptionsTaken, CardsNamedComeOnTopOfTheBusFile) {
  const std::string file =
      folder.Write("bus.xml", R"(<QELMBus><Card Address="2" Kind="lcd"/></QELMBus>)");
  Start({"--card", "1=servo", "--bus", file});
  EXPECT_EQ(Ask({0x30}), (Bytes{0x31, 0, 0x05, 0x09, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0}));
}

TEST_F(OptionsTaken, ControlLinesToBeginWithAreDone) {
  Start({"--do", "set 3 0 40", "--do", "card 5 pull"});
  EXPECT_EQ(Ask({0x20, 0x03, 0x02}), (Bytes{0x21, 0x03, 0x40, 0x00}));
  EXPECT_EQ(Ask({0x10, 0x05, 0x02, 0x00, 0x00}), Bytes{0x4E});
}

}  // namespace
}  // namespace virtualbus
