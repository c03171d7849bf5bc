#include "bus/BusFile.h"

#include <gtest/gtest.h>

#include "BusProcess.h"

namespace virtualbus {
namespace {

class BusFile : public testing::Test {
 protected:
  std::string Read(const std::string& text) {
    path_ = folder.Write("bus.xml", text);
    return ReadBusFile(path_, adapter).Text();
  }
  void ExpectProblem(const std::string& text, int line, const std::string& what) {
    adapter = BusAdapter();
    const std::string problem = Read(text);
    EXPECT_EQ(problem, path_ + ":" + std::to_string(line) + ": " + what);
  }
  Bytes Ask(const Bytes& request) { return adapter.Answer(request); }

  TempDir folder;
  BusAdapter adapter;

 private:
  std::string path_;
};

TEST_F(BusFile, PlugsItsCards) {
  EXPECT_EQ(Read(R"(<?xml version="1.0"?>
<!-- two cards -->
<QELMBus>
  <Card Address="3" Kind="digital-input"/>
  <Card Address="E" Kind="lcd"/>
</QELMBus>)"),
            "");
  EXPECT_EQ(Ask({0x30}), (Bytes{0x31, 0, 0, 0, 0x04, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0x09, 0}));
}

TEST_F(BusFile, GivesStartValues) {
  EXPECT_EQ(Read(R"(<QELMBus>
  <Card Address="0" Kind="servo"><Start Positions="01 02 03 04 05 06"/></Card>
  <Card Address="3" Kind="digital-input"><Start Lines="40 80"/></Card>
  <Card Address="E" Kind="lcd"><Start Row0="Good morning" Row3=""/></Card>
  <Card Address="F" Kind="analogue-input"><Start Values="10 20 30 40 50 60" Mask="01"/></Card>
</QELMBus>)"),
            "");
  EXPECT_EQ(Ask({0x20, 0x03, 0x02}), (Bytes{0x21, 0x03, 0x40, 0x80}));
  EXPECT_EQ(Ask({0x20, 0x0F, 0x06}), (Bytes{0x21, 0x0F, 0x00, 0x20, 0x30, 0x40, 0x50, 0x60}));
  EXPECT_EQ(adapter.Present(0x0)->Show()[0], "Positions 01 02 03 04 05 06");
  EXPECT_EQ(adapter.Present(0xE)->Show()[0], "Row0 \"Good morning        \"");
}

TEST_F(BusFile, ACardBootsWithWhatIsStored) {
  EXPECT_EQ(Read(R"(<QELMBus>
  <Card Address="4" Kind="motor"><Stored SilentRanges="01 02 03"/></Card>
  <Card Address="E" Kind="lcd"><Stored SelfTest="00" InitLight="00"/></Card>
  <Card Address="F" Kind="analogue-input"><Start Mask="3F"/><Stored Mask="02"/></Card>
</QELMBus>)"),
            "");
  EXPECT_EQ(Ask({0x50, 0x04, 0x40, 0x02}), (Bytes{0x51, 0x04, 0x02, 0x02}));
  EXPECT_EQ(adapter.Present(0xE)->Show()[0], "Row0 \"                    \"");
  EXPECT_EQ(Ask({0x50, 0x0F, 0x40, 0x01}), (Bytes{0x51, 0x0F, 0x01, 0x3F}));
  EXPECT_EQ(Ask({0x50, 0x0F, 0x01, 0xAB}), (Bytes{0x51, 0x0F, 0xAB, 0x00}));
  EXPECT_EQ(Ask({0x50, 0x0F, 0x40, 0x01}), (Bytes{0x51, 0x0F, 0x01, 0x02}));
}

TEST_F(BusFile, AFaultIsNamedWithItsLine) {
  const std::string kinds =
      "servo, digital-input, motor, digital-output, keys, ir, lcd, analogue-input";
  ExpectProblem(" ", 1, "No document element found");
  ExpectProblem("<QELMBus>\n<Card\n", 2, "Error parsing start element tag");
  ExpectProblem("\n<Bus/>", 2, "the document element must be QELMBus");
  ExpectProblem("<QELMBus>\n<Adapter/></QELMBus>", 2, "\"Adapter\" is not Card");
  ExpectProblem("<QELMBus>\n<Card/></QELMBus>", 2, "Address \"\" is not one digit, 0 to F");
  ExpectProblem("<QELMBus>\n\n<Card Address='10' Kind='lcd'/></QELMBus>", 3,
                "Address \"10\" is not one digit, 0 to F");
  ExpectProblem("<QELMBus><Card Address='1' Kind='toaster'/></QELMBus>", 1,
                "Kind \"toaster\" is none of " + kinds);
  ExpectProblem("<QELMBus><Card Address='1' Kind='lcd' Color='red'/></QELMBus>", 1,
                "a Card has no \"Color\"");
  ExpectProblem("<QELMBus><Card Address='1' Kind='lcd'/>\n<Card Address='1' Kind='ir'/></QELMBus>",
                2, "address 1 is taken");
  ExpectProblem("<QELMBus><Card Address='1' Kind='lcd'>\n<Init/></Card></QELMBus>", 2,
                "a Card has no element \"Init\"");
  ExpectProblem("<QELMBus><Card Address='1' Kind='lcd'>\n<Start Lines='00'/></Card></QELMBus>", 2,
                "this kind of card has no \"Lines\"");
  ExpectProblem(
      "<QELMBus><Card Address='1' Kind='servo'><Start EndA='0 0 0 0 0 0'/></Card></QELMBus>", 1,
      "this kind of card has no \"EndA\"");
  ExpectProblem(
      "<QELMBus><Card Address='1' Kind='digital-input'><Start Lines='00'/></Card></QELMBus>", 1,
      "Lines \"00\" is not 2 byte(s)");
  ExpectProblem(
      "<QELMBus><Card Address='1' Kind='digital-input'><Start Lines='0 X'/></Card></QELMBus>", 1,
      "Lines \"0 X\" is not 2 byte(s)");
  ExpectProblem(
      "<QELMBus><Card Address='1' Kind='lcd'><Start "
      "Row0='123456789012345678901'/></Card></QELMBus>",
      1, "Row0 is longer than 20");
}

TEST_F(BusFile, WhatCannotBeReadIsNamed) {
  EXPECT_EQ(ReadBusFile(folder.Path("none"), adapter).Text(),
            folder.Path("none") + ": cannot be read");
  EXPECT_EQ(ReadBusFile(folder.Path(""), adapter).Text(),
            folder.Path("") + ": is empty or a folder");
}

TEST_F(BusFile, AFaultEndsTheStart) {
  const std::string path = folder.Write("bus.xml", "<QELMBus>\n<Card/></QELMBus>");
  Program program(folder, {"--bus", path, "--link", folder.Path("link")});
  EXPECT_EQ(program.WaitForExit(), 2);
  EXPECT_EQ(program.Errors(), "qelm-bus: " + path + ":2: Address \"\" is not one digit, 0 to F\n");
  EXPECT_FALSE(std::filesystem::exists(std::filesystem::symlink_status(folder.Path("link"))));
}

}  // namespace
}  // namespace virtualbus
