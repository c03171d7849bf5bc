#include "base/Values.h"

#include <gtest/gtest.h>

#include <boost/json/serialize.hpp>

#include "base/Failure.h"
#include "base/Json.h"

namespace ctl {
namespace {

std::string Value(const std::string& text) { return boost::json::serialize(ParseValue(text)); }

std::string Setting(const std::string& text) {
  const auto [key, value] = ParseSetting(text);
  return key + " " + boost::json::serialize(value);
}

TEST(Values, AreSwitchesOrNumbers) {
  EXPECT_EQ(Value("on"), "true");
  EXPECT_EQ(Value("OFF"), "false");
  EXPECT_EQ(Value("200"), "200");
  EXPECT_EQ(Value("-50"), "-50");
  EXPECT_EQ(Value("0x20"), "32");
  EXPECT_DOUBLE_EQ(ParseValue("2.5").as_double(), 2.5);
}

TEST(Values, AnythingElseIsRefused) {
  for (const char* text : {"", "lamp", "12a", "0x", "1,2", "inf"})
    EXPECT_THROW(ParseValue(text), Failure) << text;
}

TEST(Values, SettingsAreOneValueOrAList) {
  EXPECT_EQ(Setting("mask=0x20"), "mask 32");
  EXPECT_EQ(Setting("self_test=on"), "self_test true");
  EXPECT_EQ(Setting("end_a=16,16,0x10"), "end_a [16,16,16]");
}

TEST(Values, ASettingWithoutAKeyIsRefused) {
  for (const char* text : {"mask", "=3", "mask=", "end_a=1,,2"})
    EXPECT_THROW(ParseSetting(text), Failure) << text;
}

TEST(Values, HexMayBeWrittenInPieces) {
  EXPECT_EQ(ParseHex({"434f"}), "434F");
  EXPECT_EQ(ParseHex({"43", "4F"}), "434F");
  EXPECT_EQ(ParseHex({"43:4F 01"}), "434F01");
}

TEST(Values, HalfAByteIsRefused) { EXPECT_THROW(ParseHex({"434"}), Failure); }

TEST(Values, WithOtherLettersItIsNoHex) {
  EXPECT_EQ(ParseHex({"4G"}), std::nullopt);
  EXPECT_EQ(ParseHex({"434F", "on"}), std::nullopt);
}

TEST(Values, AreShownAsPeopleReadThem) {
  EXPECT_EQ(ValueText(nullptr), "unknown");
  EXPECT_EQ(ValueText(true), "on");
  EXPECT_EQ(ValueText(200), "200");
  EXPECT_EQ(ValueText(2.5), "2.5");
  EXPECT_EQ(ValueText(0.1), "0.1");
}

}  // namespace
}  // namespace ctl
