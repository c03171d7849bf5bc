#include "model/Value.h"

#include <gtest/gtest.h>

namespace hub::model {
namespace {

ChannelSettings Volts() {
  ChannelSettings settings;
  settings.unit = "V";
  settings.min = 0;
  settings.max = 5;
  settings.decimals = 2;
  return settings;
}

TEST(Lines, AnOutputIsOnWhereItsLineIsLow) {
  const ChannelSettings plain;
  const ChannelForm form{RowOf(Kind::kDigitalOutput), 0, plain};
  EXPECT_EQ(ToValue(form, 0), Value(true));
  EXPECT_EQ(ToValue(form, 1), Value(false));
  EXPECT_EQ(ToRaw(form, true), 0);
  EXPECT_EQ(ToRaw(form, false), 1);
}

TEST(Lines, AnInputIsOnWhereItsLineIsHigh) {
  const ChannelSettings plain;
  const ChannelForm form{RowOf(Kind::kDigitalInput), 0, plain};
  EXPECT_EQ(ToValue(form, 1), Value(true));
  EXPECT_EQ(ToValue(form, 0), Value(false));
}

TEST(Lines, EitherCanBeTurnedRound) {
  ChannelSettings high;
  high.active_high = true;
  EXPECT_EQ(ToValue({RowOf(Kind::kDigitalOutput), 0, high}, 1), Value(true));
  ChannelSettings low;
  low.active_high = false;
  EXPECT_EQ(ToValue({RowOf(Kind::kDigitalInput), 0, low}, 0), Value(true));
}

TEST(Lines, TakeNoNumber) {
  const ChannelSettings plain;
  const ChannelForm form{RowOf(Kind::kDigitalOutput), 0, plain};
  EXPECT_EQ(ToRaw(form, 1.0), std::nullopt);
  EXPECT_EQ(ToRaw(form, {}), std::nullopt);
  EXPECT_FALSE(RangeOf(form));
}

TEST(Numbers, AreBytesWithoutAUnit) {
  const ChannelSettings plain;
  const ChannelForm form{RowOf(Kind::kServo), 2, plain};
  EXPECT_EQ(ToValue(form, 0x80), Value(128.0));
  EXPECT_EQ(ToRaw(form, 128.0), 0x80);
  EXPECT_EQ(ToRaw(form, 255.0), 0xFF);
  EXPECT_EQ(ToRaw(form, 255.5), std::nullopt);
  EXPECT_EQ(ToRaw(form, -1.0), std::nullopt);
  EXPECT_EQ(ToRaw(form, true), std::nullopt);
}

TEST(Numbers, AUnitMapsTheByte) {
  const ChannelSettings volts = Volts();
  const ChannelForm form{RowOf(Kind::kAnalogueInput), 3, volts};
  EXPECT_EQ(ToValue(form, 0), Value(0.0));
  EXPECT_EQ(ToValue(form, 255), Value(5.0));
  EXPECT_EQ(ToValue(form, 128), Value(2.51));
}

TEST(Numbers, ARangeNeedsNoUnit) {
  ChannelSettings degrees;
  degrees.max = 180;
  const ChannelForm form{RowOf(Kind::kServo), 0, degrees};
  EXPECT_EQ(ToValue(form, 255), Value(180.0));
  EXPECT_EQ(ToRaw(form, 90.0), 0x80);
  EXPECT_EQ(ToRaw(form, 181.0), std::nullopt);
}

TEST(Numbers, AUnitMayRunDownwards) {
  ChannelSettings down = Volts();
  down.min = 5;
  down.max = 0;
  const ChannelForm form{RowOf(Kind::kServo), 0, down};
  EXPECT_EQ(ToValue(form, 0), Value(5.0));
  EXPECT_EQ(ToRaw(form, 0.0), 0xFF);
  EXPECT_EQ(RangeOf(form)->min, 0);
  EXPECT_EQ(RangeOf(form)->max, 5);
}

TEST(Numbers, AUnitBecomesTheNearestByteAndReadsBackAsIt) {
  const ChannelSettings volts = Volts();
  const ChannelForm form{RowOf(Kind::kServo), 0, volts};
  EXPECT_EQ(ToRaw(form, 2.505), 0x80);  // 127.76
  for (int byte = 0; byte <= 255; ++byte) {
    const Value value = ToValue(form, static_cast<uint8_t>(byte));
    EXPECT_EQ(ToRaw(form, value), byte);
  }
}

TEST(Numbers, AnEndThatIsRoundedCanBeSetAsItIsShown) {
  ChannelSettings coarse = Volts();
  coarse.min = 0.04;
  coarse.max = 3.37;
  coarse.decimals = 1;
  const ChannelForm form{RowOf(Kind::kServo), 0, coarse};
  EXPECT_EQ(ToValue(form, 0), Value(0.0));
  EXPECT_EQ(ToValue(form, 255), Value(3.4));
  EXPECT_EQ(ToRaw(form, 0.0), 0);
  EXPECT_EQ(ToRaw(form, 3.4), 0xFF);
  EXPECT_EQ(RangeOf(form)->min, 0.0);
  EXPECT_EQ(RangeOf(form)->max, 3.4);
}

TEST(Numbers, AnEndThatIsRoundedInwardsCanBeSetAsItWasSettled) {
  ChannelSettings coarse = Volts();
  coarse.max = 3.33;
  coarse.decimals = 1;
  EXPECT_EQ(ToRaw({RowOf(Kind::kServo), 0, coarse}, 3.33), 0xFF);
}

TEST(Numbers, AUnitWithoutWidthIsTheFirstByte) {
  ChannelSettings flat = Volts();
  flat.max = 0;
  EXPECT_EQ(ToRaw({RowOf(Kind::kServo), 0, flat}, 0.0), 0);
}

TEST(Drives, AreBytesAsLongAsTheyAreNotSigned) {
  const ChannelSettings plain;
  EXPECT_EQ(ToValue({RowOf(Kind::kMotor), 0, plain}, 0x80), Value(128.0));
}

TEST(Drives, SignedOnesStandStillInTheMiddle) {
  const ChannelSettings plain;
  const ChannelForm form{RowOf(Kind::kMotor), 2, plain, true};
  EXPECT_EQ(ToValue(form, 0x80), Value(0.0));
  EXPECT_EQ(ToValue(form, 0x00), Value(-100.0));
  EXPECT_EQ(ToValue(form, 0xFF), Value(100.0));
  EXPECT_EQ(ToRaw(form, 0.0), 0x80);
  EXPECT_EQ(ToRaw(form, -100.0), 0x00);
  EXPECT_EQ(ToRaw(form, 100.0), 0xFF);
  EXPECT_EQ(ToRaw(form, 101.0), std::nullopt);
}

TEST(Drives, TheControlByteIsNeverSigned) {
  const ChannelSettings plain;
  EXPECT_EQ(ToValue({RowOf(Kind::kMotor), 3, plain, true}, 0x07), Value(7.0));
}

}  // namespace
}  // namespace hub::model
