#include "model/DeviceClasses.h"

#include <gtest/gtest.h>

namespace hub::model {
namespace {

TEST(DeviceClasses, AreOfContactsOrOfLevels) {
  EXPECT_TRUE(IsContactClass("door"));
  EXPECT_FALSE(IsContactClass("temperature"));
  EXPECT_TRUE(IsLevelClass("temperature"));
  EXPECT_FALSE(IsLevelClass("door"));
  EXPECT_TRUE(IsContactClass("moisture") && IsLevelClass("moisture"));
  EXPECT_TRUE(IsDeviceClass("door") && IsDeviceClass("temperature"));
  EXPECT_FALSE(IsDeviceClass("") || IsDeviceClass("Door") || IsDeviceClass("enum"));
}

TEST(DeviceClasses, ALevelComesInItsUnits) {
  EXPECT_TRUE(LevelClassTakes("temperature", "°C"));
  EXPECT_TRUE(LevelClassTakes("voltage", "mV"));
  EXPECT_TRUE(LevelClassTakes("ph", ""));
  EXPECT_FALSE(LevelClassTakes("temperature", "C"));
  EXPECT_FALSE(LevelClassTakes("temperature", ""));
  EXPECT_FALSE(LevelClassTakes("temperature", "°C °F"));
  EXPECT_FALSE(LevelClassTakes("ph", "V"));
  EXPECT_FALSE(LevelClassTakes("door", ""));
}

TEST(DeviceClasses, OutputsAreSwitchesLightsOrFans) {
  EXPECT_EQ(OutputForms().front(), "switch");
  EXPECT_TRUE(IsOutputForm("light") && IsOutputForm("fan"));
  EXPECT_FALSE(IsOutputForm("") || IsOutputForm("siren"));
}

}  // namespace
}  // namespace hub::model
