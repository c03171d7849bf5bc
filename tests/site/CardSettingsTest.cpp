// What the CAE console sets in a card, stored and not stored, over a reboot.
#include "SiteTest.h"

namespace {

class CardSettings : public SiteTest {
 protected:
  void Reboot(const std::string& address, Place place = Place::current()) {
    Request("REBOOT:" + address, "CIA: Card is REBOOTED\r\n\rRBT:0x" + address + ":OK\r\n\r",
            place);
  }
  void SetMask(Place place = Place::current()) {
    Request("SETANMASK:F=21", "CIA: Channel MASK of the card is SET\r\n\rAMS:0xF:0x21\r\n\r",
            place);
  }
  void ExpectMask(const std::string& mask, Place place = Place::current()) {
    Request("GETANMASK:F", "CIA: MASK is GOT from card\r\n\rAMV:0xF:0x" + mask + "\r\n\r", place);
  }
  void SetSilentRange(Place place = Place::current()) {
    Request("SETMSR2:4=1C", "CIA: MSR value of the card is SET\r\n\rMPS:0x4:MSR2:0x1C\r\n\r",
            place);
  }
  void ExpectSilentRange(const std::string& range, Place place = Place::current()) {
    Request("GETMSR2:4", "CIA: MSR value is GOT from card\r\n\rMSR2:0x4:0x" + range + "\r\n\r",
            place);
  }
  void MoveServo(const std::string& position) {
    Connect(kIo).Send("a0b2d" + position + "\r\n");
    WaitFrame("10 00 06 80 80 " + position + " 80 80 80");
  }
};

}  // namespace

TEST_F(CardSettings, MaskThatIsNotStoredIsGoneAfterAReboot) {
  StartSite();
  SetMask();
  ExpectMask("21");
  Reboot("F");
  ExpectMask("00");
}

TEST_F(CardSettings, StoredMaskSurvivesAReboot) {
  StartSite();
  SetMask();
  Request("STOREANMASK:F", "CIA: MASK IS STORED at address F\r\n\r");
  Reboot("F");
  ExpectMask("21");
}

TEST_F(CardSettings, MaskedChannelIsNotReported) {
  WriteConfig({.poll = "TRUE"});
  StartSite();
  Client io = Connect(kIo);
  SetMask();
  Bus("set F 0 70 70");
  std::string report = io.ReadUntil("\r\n\r");
  if (report != "aFb1d70\r\n\r") report = io.ReadUntil("\r\n\r");
  EXPECT_EQ(report, "aFb1d70\r\n\r");
  io.ExpectSilence();
}

TEST_F(CardSettings, ServoMovesToWhatWasStored) {
  StartSite();
  MoveServo("10");
  Request("STORESRVPOS:0", "CIA: POSITIONS ARE STORED at address 0\r\n\r");
  Reboot("0");
  ExpectHeld("0", "reached 80 80 80 80 80 80");
  Request("MOVESTRPOS:0", "CIA: SERVOS ARE MOVED TO STORED POSITIONS at address 0\r\n\r");
  ExpectHeld("0", "reached 80 80 10 80 80 80");
}

TEST_F(CardSettings, ServoPositionThatIsNotStoredIsGoneAfterAReboot) {
  StartSite();
  MoveServo("10");
  Reboot("0");
  Request("MOVESTRPOS:0", "CIA: SERVOS ARE MOVED TO STORED POSITIONS at address 0\r\n\r");
  ExpectHeld("0", "reached 80 80 80 80 80 80");
}

TEST_F(CardSettings, EndPositionAIsKeptOverAReboot) {
  StartSite();
  Request("SETSCA5:0=90", "CIA: SERVO PARAM of the card is SET\r\n\rSPS:0x0:SCA5:0x90\r\n\r");
  Reboot("0");
  Request("GETSCA5:0", "CIA: SERVO PARAM is GOT from card\r\n\rSPG:0x0:SCA5:0x90\r\n\r");
  ExpectHeld("0", "reached 80 80 80 80 80 90");
}

TEST_F(CardSettings, EndPositionBIsKeptOverAReboot) {
  StartSite();
  Request("SETSCB0:0=70", "CIA: SERVO PARAM of the card is SET\r\n\rSPS:0x0:SCB0:0x70\r\n\r");
  Reboot("0");
  Request("GETSCB0:0", "CIA: SERVO PARAM is GOT from card\r\n\rSPG:0x0:SCB0:0x70\r\n\r");
  ExpectHeld("0", "reached 70 80 80 80 80 80");
}

TEST_F(CardSettings, SilentRangeThatIsNotStoredIsGoneAfterAReboot) {
  StartSite();
  SetSilentRange();
  ExpectSilentRange("1C");
  Reboot("4");
  ExpectSilentRange("00");
}

TEST_F(CardSettings, StoredSilentRangeSurvivesAReboot) {
  StartSite();
  SetSilentRange();
  Request("STOREMSRS:4", "CIA: MSR values are STORED at address 4\r\n\r");
  Reboot("4");
  ExpectSilentRange("1C");
}

TEST_F(CardSettings, DisplayBootsWithoutItsSelfTestAndWithItAgain) {
  StartSite();
  Request("LCDSELFTEST:E=OFF", "CIA: SELFTEST STATE IS SET TO OFF at address E\r\n\r");
  Reboot("E");
  ExpectHeld("E", "Row0 \"                    \"");
  Request("LCDSELFTEST:E=ON", "CIA: SELFTEST STATE IS SET TO ON at address E\r\n\r");
  Reboot("E");
  ExpectHeld("E", "Row0 \"SELF TEST OK        \"");
}

TEST_F(CardSettings, DisplayBootsDarkAndLitAgain) {
  StartSite();
  Request("LCDINITLIGHT:E=OFF", "CIA: INITLIGHT STATE IS SET TO OFF at address E\r\n\r");
  Reboot("E");
  ExpectHeld("E", "light off");
  Request("LCDINITLIGHT:E=ON", "CIA: INITLIGHT STATE IS SET TO ON at address E\r\n\r");
  Reboot("E");
  ExpectHeld("E", "light on");
}
