#include <gtest/gtest.h>

#include <algorithm>
#include <iterator>

#include "bus/BusAdapter.h"
#include "cards/DigitalOutput.h"
#include "cards/Ir.h"
#include "cards/Lcd.h"
#include "cards/Motor.h"
#include "cards/Servo.h"

namespace virtualbus {
namespace {

const Bytes kRefusal{0x4E};
const Bytes kAcknowledgement{0x06};

// One card at address 2.
class CardTest : public testing::Test {
 protected:
  explicit CardTest(const char* kind) { EXPECT_EQ(adapter.Insert(2, *FindKind(kind)).Text(), ""); }

  Bytes Ask(const Bytes& request) { return adapter.Answer(request); }
  void Write(const Bytes& data) {
    Bytes request{0x10, 0x02, static_cast<uint8_t>(data.size())};
    std::ranges::copy(data, std::back_inserter(request));
    EXPECT_EQ(Ask(request), kAcknowledgement);
  }
  void SetRegister(uint8_t number, uint8_t value) {
    EXPECT_EQ(Ask({0x50, 0x02, 0x01, number, value}), (Bytes{0x51, 0x02, number, value}));
  }
  void Trigger(uint8_t number) {
    EXPECT_EQ(Ask({0x50, 0x02, 0x01, number}), (Bytes{0x51, 0x02, number, 0x00}));
  }
  void ExpectRegister(uint8_t number, uint8_t value) {
    EXPECT_EQ(Ask({0x50, 0x02, 0x40, number}), (Bytes{0x51, 0x02, number, value}));
  }
  void Reboot() { Trigger(0xAB); }
  Card& TheCard() { return *adapter.Present(2); }
  template <typename Kind>
  Kind& As() {
    return static_cast<Kind&>(TheCard());
  }
  void ExpectShown(const std::string& line) {
    const auto lines = TheCard().Show();
    EXPECT_TRUE(std::ranges::find(lines, line) != lines.end()) << line;
  }

  BusAdapter adapter;
};

struct DigitalOutputCard : CardTest {
  DigitalOutputCard() : CardTest("digital-output") {}
};

TEST_F(DigitalOutputCard, BootsWithAllLinesHigh) {
  ExpectShown("Lines FF FF");
  EXPECT_FALSE(As<DigitalOutput>().IsLit(10));
}

TEST_F(DigitalOutputCard, ALowLineLightsItsLamp) {
  Write({0xFF, 0xFB});
  ExpectShown("Lines FF FB");
  EXPECT_TRUE(As<DigitalOutput>().IsLit(10));
  EXPECT_FALSE(As<DigitalOutput>().IsLit(2));
  Reboot();
  ExpectShown("Lines FF FF");
}

struct DigitalInputCard : CardTest {
  DigitalInputCard() : CardTest("digital-input") {}
};

TEST_F(DigitalInputCard, APressedLineReadsOne) {
  EXPECT_TRUE(TheCard().Press(6));
  EXPECT_TRUE(TheCard().Press(15));
  EXPECT_EQ(Ask({0x20, 0x02, 0x02}), (Bytes{0x21, 0x02, 0x40, 0x80}));
  EXPECT_TRUE(TheCard().Release(6));
  EXPECT_EQ(Ask({0x20, 0x02, 0x02}), (Bytes{0x21, 0x02, 0x00, 0x80}));
  EXPECT_FALSE(TheCard().Press(16));
  EXPECT_FALSE(TheCard().Release(16));
}

TEST_F(DigitalInputCard, ARebootDoesNotLetGo) {
  TheCard().Press(0);
  Reboot();
  EXPECT_EQ(Ask({0x20, 0x02, 0x02}), (Bytes{0x21, 0x02, 0x01, 0x00}));
  TheCard().Release({});
  EXPECT_EQ(Ask({0x20, 0x02, 0x02}), (Bytes{0x21, 0x02, 0x00, 0x00}));
}

struct ServoCard : CardTest {
  ServoCard() : CardTest("servo") {}
};

TEST_F(ServoCard, BootsInTheMiddleAndGoesToItsPosition) {
  ExpectShown("Positions 80 80 80 80 80 80");
  Write({0x00, 0x20, 0x40, 0x60, 0x80, 0xFF});
  ExpectShown("reached 00 20 40 60 80 FF");
}

TEST_F(ServoCard, StopsAtItsEndPositions) {
  SetRegister(0xC1, 0x30);
  SetRegister(0xD1, 0xC0);
  SetRegister(0xC2, 0xC0);  // the ends may be the other way round
  SetRegister(0xD2, 0x30);
  Write({0x00, 0x00, 0xFF, 0x00, 0x00, 0x00});
  ExpectShown("reached 00 30 C0 00 00 00");
}

TEST_F(ServoCard, EndPositionsAreReadInTheirOwnBanksAndKeptAtOnce) {
  for (uint8_t channel = 0; channel < 6; ++channel) {
    SetRegister(static_cast<uint8_t>(0xC0 + channel), static_cast<uint8_t>(0x10 + channel));
    SetRegister(static_cast<uint8_t>(0xD0 + channel), static_cast<uint8_t>(0xE0 + channel));
  }
  Reboot();
  for (uint8_t channel = 0; channel < 6; ++channel) {
    ExpectRegister(static_cast<uint8_t>(0x21 + channel), static_cast<uint8_t>(0x10 + channel));
    ExpectRegister(static_cast<uint8_t>(0x27 + channel), static_cast<uint8_t>(0xE0 + channel));
  }
  EXPECT_EQ(Ask({0x50, 0x02, 0x01, 0xC6, 0x00}), kRefusal);
  EXPECT_EQ(Ask({0x50, 0x02, 0x40, 0x2D}), kRefusal);
  EXPECT_EQ(Ask({0x50, 0x02, 0x01, 0xC0}), kRefusal) << "a value is missing";
}

TEST_F(ServoCard, StoredPositionsOutliveARebootAndAreMovedToOnDemand) {
  Write({1, 2, 3, 4, 5, 6});
  Trigger(0x74);
  Write({9, 9, 9, 9, 9, 9});
  Reboot();
  ExpectShown("reached 80 80 80 80 80 80");
  Trigger(0x3F);
  ExpectShown("reached 01 02 03 04 05 06");
}

struct MotorCard : CardTest {
  MotorCard() : CardTest("motor") {}
};

TEST_F(MotorCard, InManualModeTheControlByteGivesTheDirection) {
  Write({0x40, 0xFF, 0x00, 0x02});
  EXPECT_EQ(As<Motor>().Speed(0), 64);
  EXPECT_EQ(As<Motor>().Speed(1), -255);
  EXPECT_EQ(As<Motor>().Speed(2), 0);
  ExpectShown("speed 64 -255 0");
}

TEST_F(MotorCard, WithASilentRangeTheMiddleIsStandstill) {
  SetRegister(0xC0, 0x10);
  for (const auto& [byte, speed] : {std::pair{0x80, 0},
                                    {0x90, 0},
                                    {0x70, 0},
                                    {0x91, 34},
                                    {0x6F, -34},
                                    {0xFF, 254},
                                    {0x00, -255}}) {
    Write({static_cast<uint8_t>(byte), 0, 0, 0});
    EXPECT_EQ(As<Motor>().Speed(0), speed) << byte;
  }
}

TEST_F(MotorCard, OnlyStoredSilentRangesOutliveAReboot) {
  SetRegister(0xC0, 0x11);
  SetRegister(0xC1, 0x12);
  Trigger(0xCD);
  SetRegister(0xC2, 0x13);
  ExpectRegister(0x03, 0x13);
  Reboot();
  ExpectRegister(0x01, 0x11);
  ExpectRegister(0x02, 0x12);
  ExpectRegister(0x03, 0x00);
  EXPECT_EQ(Ask({0x50, 0x02, 0x01, 0xC3, 0x00}), kRefusal);
  EXPECT_EQ(Ask({0x50, 0x02, 0x40, 0x04}), kRefusal);
}

TEST_F(MotorCard, StandsStillAfterAReboot) {
  Write({0x40, 0xFF, 0x10, 0x02});
  Reboot();
  ExpectShown("speed 0 0 0");
}

struct AnalogueInputCard : CardTest {
  AnalogueInputCard() : CardTest("analogue-input") {}
};

TEST_F(AnalogueInputCard, MaskedChannelsReadZero) {
  std::ranges::copy(Bytes{1, 2, 3, 4, 5, 6}, TheCard().Inputs().begin());
  EXPECT_EQ(Ask({0x20, 0x02, 0x06}), (Bytes{0x21, 0x02, 1, 2, 3, 4, 5, 6}));
  SetRegister(0x01, 0x21);
  EXPECT_EQ(Ask({0x20, 0x02, 0x06}), (Bytes{0x21, 0x02, 0, 2, 3, 4, 5, 0}));
}

TEST_F(AnalogueInputCard, OnlyAStoredMaskOutlivesAReboot) {
  SetRegister(0x01, 0x3F);
  ExpectRegister(0x01, 0x3F);
  Reboot();
  ExpectRegister(0x01, 0x00);
  SetRegister(0x01, 0x05);
  Trigger(0x02);
  SetRegister(0x01, 0x3F);
  Reboot();
  ExpectRegister(0x01, 0x05);
}

struct KeysCard : CardTest {
  KeysCard() : CardTest("keys") {}
};

TEST_F(KeysCard, AHeldKeyIsInTheLowSixBits) {
  EXPECT_TRUE(TheCard().Press(0x05));
  EXPECT_EQ(Ask({0x20, 0x02, 0x01}), (Bytes{0x21, 0x02, 0x05}));
  EXPECT_FALSE(TheCard().Release(0x06)) << "that one is not held";
  EXPECT_TRUE(TheCard().Release(0x05));
  EXPECT_EQ(Ask({0x20, 0x02, 0x01}), (Bytes{0x21, 0x02, 0x00}));
  EXPECT_FALSE(TheCard().Press(0x00));
  EXPECT_FALSE(TheCard().Press(0x40));
}

TEST_F(KeysCard, EveryPollSeesOneStepOfTheEncoder) {
  TheCard().Press(0x01);
  TheCard().Turn(5);
  for (const uint8_t state : Bytes{0x41, 0xC1, 0x81, 0x01, 0x41, 0x41}) {
    EXPECT_EQ(Ask({0x20, 0x02, 0x01}), (Bytes{0x21, 0x02, state})) << "to the right";
  }
  TheCard().Turn(-2);
  for (const uint8_t state : Bytes{0x01, 0x81, 0x81}) {
    EXPECT_EQ(Ask({0x20, 0x02, 0x01}), (Bytes{0x21, 0x02, state})) << "to the left";
  }
}

struct LcdCard : CardTest {
  LcdCard() : CardTest("lcd") {}

  void Text(uint8_t column, uint8_t row, std::string_view text) {
    Bytes data{0x09, column, row};
    data.insert(data.end(), text.begin(), text.end());
    data.push_back(0x00);
    Write(data);
  }
};

TEST_F(LcdCard, ShowsATextAtItsPlace) {
  Write({0x00});
  Text(3, 1, "Tail of the cat");
  EXPECT_EQ(As<Lcd>().Row(0), "                    ");
  EXPECT_EQ(As<Lcd>().Row(1), "   Tail of the cat  ");
  EXPECT_EQ(As<Lcd>().CursorAt(), 38U);
}

TEST_F(LcdCard, ALongTextRunsOnAndEndsWithTheDisplay) {
  Write({0x00});
  Text(18, 2, "abcd");
  Text(18, 3, "wxyz");
  EXPECT_EQ(As<Lcd>().Row(2), "                  ab");
  EXPECT_EQ(As<Lcd>().Row(3), "cd                wx");
}

TEST_F(LcdCard, ATextOutsideTheDisplayIsNotSeen) {
  Write({0x00});
  Text(20, 0, "x");
  Text(0, 4, "x");
  Text(0, 0, "");
  for (size_t row = 0; row < 4; ++row) EXPECT_EQ(As<Lcd>().Row(row), "                    ");
}

TEST_F(LcdCard, UnprintableCharactersAreBlanks) {
  Text(0, 0,
       "a\xFF"
       "b\x01"
       "c");
  EXPECT_EQ(As<Lcd>().Row(0).substr(0, 5), "a b c");
}

TEST_F(LcdCard, SwitchesLightCursorAndBlinking) {
  Write({0x02});
  EXPECT_FALSE(As<Lcd>().Light());
  Write({0x01});
  EXPECT_TRUE(As<Lcd>().Light());
  Write({0x03});
  EXPECT_TRUE(As<Lcd>().Cursor());
  Write({0x05});
  EXPECT_TRUE(As<Lcd>().Blinking());
  Write({0x04});
  EXPECT_FALSE(As<Lcd>().Cursor());
  Write({0x06});
  EXPECT_FALSE(As<Lcd>().Blinking());
  EXPECT_EQ(Ask({0x10, 0x02, 0x01, 0x07}), kRefusal);
  EXPECT_EQ(Ask({0x10, 0x02, 0x05, 0x09, 0x00, 0x00, 0x41, 0x42}), kRefusal) << "no end of text";
  EXPECT_EQ(Ask({0x10, 0x02, 0x00}), kRefusal);
}

TEST_F(LcdCard, BootOptionsAreKeptAndObeyed) {
  EXPECT_EQ(As<Lcd>().Row(0), "SELF TEST OK        ");
  EXPECT_TRUE(As<Lcd>().Light());
  SetRegister(0x01, 0x00);
  SetRegister(0x02, 0x00);
  Reboot();
  EXPECT_EQ(As<Lcd>().Row(0), "                    ");
  EXPECT_FALSE(As<Lcd>().Light());
  ExpectRegister(0x01, 0x00);
  ExpectRegister(0x02, 0x00);
}

struct IrCard : CardTest {
  IrCard() : CardTest("ir") {}
};

TEST_F(IrCard, KeepsWhatWasSentNewestLast) {
  for (uint8_t i = 0; i < 20; ++i) Write({0x01, i});
  EXPECT_EQ(As<Ir>().Sent().size(), 16U);
  EXPECT_EQ(As<Ir>().Sent().front(), Bytes{4});
  EXPECT_EQ(As<Ir>().Sent().back(), Bytes{19});
  ExpectShown("sent 13");
  Write({0x00});
  EXPECT_EQ(Ask({0x10, 0x02, 0x02, 0x02, 0x41}), kRefusal) << "its count does not fit";
}

}  // namespace
}  // namespace virtualbus
