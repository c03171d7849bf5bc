// CAE commands that reach into one card: request on the bus, and all three answers.
#include "DaemonTest.h"

namespace {

constexpr std::uint8_t kWrite = 0x01;
constexpr std::uint8_t kRead = 0x40;

class CaeCard : public DaemonTest {
 protected:
  void StartWith(int address, std::uint8_t kind, Place place = Place::current()) {
    PlugCard(address, kind);
    StartOnBus({}, place);
  }

  // The line sends one request, and the card's answer gives these replies.
  void ExpectRequest(const std::string& line, const Bytes& request, const std::string& replies,
                     Place place = Place::current()) {
    Command(line, replies, place);
    adapter.ExpectFrames({request}, place);
  }

  // The request goes out; the card says no.
  void ExpectNoAnswer(const std::string& line, const std::string& error,
                      Place place = Place::current()) {
    adapter.Script({0x50}, {Packet({'N'})});
    Command(line, error + "\r\n\r", place);
    adapter.ExpectCount({0x50}, 1, place);
  }

  // Not a card for this command: the error, and nothing on the bus.
  void ExpectWrongCard(const std::string& line, const std::string& error,
                       Place place = Place::current()) {
    const std::size_t before = adapter.Frames().size();
    Command(line, error + "\r\n\r", place);
    if (adapter.Frames().size() != before) FAIL_AT(place) << "a frame goes out";
  }
};

}  // namespace

TEST_F(CaeCard, LcdSelfTestIsSet) {
  StartWith(0xE, kLcd);
  ExpectRequest("LCDSELFTEST:E=OFF", {0x50, 0x0E, kWrite, 0x01, 0x00},
                "CIA: SELFTEST STATE IS SET TO OFF at address E\r\n\r");
  ExpectRequest("LCDSELFTEST:E=ON", {0x50, 0x0E, kWrite, 0x01, 0xFF},
                "CIA: SELFTEST STATE IS SET TO ON at address E\r\n\r");
  ExpectRequest("LCDSELFTEST:E=XX", {0x50, 0x0E, kWrite, 0x01, 0xFF},
                "CIA: SELFTEST STATE IS SET TO XX at address E\r\n\r");
  ExpectRequest("LCDSELFTEST:E=OFX", {0x50, 0x0E, kWrite, 0x01, 0x00},
                "CIA: SELFTEST STATE IS SET TO OFF at address E\r\n\r");
}

TEST_F(CaeCard, LcdInitLightIsSet) {
  StartWith(0xE, kLcd);
  ExpectRequest("LCDINITLIGHT:E=on", {0x50, 0x0E, kWrite, 0x02, 0x00},
                "CIA: INITLIGHT STATE IS SET TO on at address E\r\n\r");
  ExpectRequest("LCDINITLIGHT:E=ON", {0x50, 0x0E, kWrite, 0x02, 0xFF},
                "CIA: INITLIGHT STATE IS SET TO ON at address E\r\n\r");
  ExpectRequest("LCDINITLIGHT:E=OF", {0x50, 0x0E, kWrite, 0x02, 0x00},
                "CIA: INITLIGHT STATE IS SET TO OFF at address E\r\n\r");
}

TEST_F(CaeCard, LcdStatesAreKeptApart) {
  StartWith(0xE, kLcd);
  ExpectRequest("LCDSELFTEST:E=ON", {0x50, 0x0E, kWrite, 0x01, 0xFF},
                "CIA: SELFTEST STATE IS SET TO ON at address E\r\n\r");
  ExpectRequest("LCDINITLIGHT:E=??", {0x50, 0x0E, kWrite, 0x02, 0x00},
                "CIA: INITLIGHT STATE IS SET TO ?? at address E\r\n\r");
}

TEST_F(CaeCard, LcdStateIsTakenEvenWhenTheCardIsWrong) {
  StartWith(0xE, kLcd);
  ExpectWrongCard("LCDSELFTEST:1=ON", "CIE: THIS COMMAND IS VALID FOR LCD CONTROL CARD ONLY");
  ExpectRequest("LCDSELFTEST:E=--", {0x50, 0x0E, kWrite, 0x01, 0xFF},
                "CIA: SELFTEST STATE IS SET TO -- at address E\r\n\r");
}

TEST_F(CaeCard, LcdErrors) {
  StartWith(0xE, kLcd);
  ExpectNoAnswer("LCDSELFTEST:E=ON", "CIE: STATE WRITE ERROR");
  ExpectNoAnswer("LCDINITLIGHT:E=ON", "CIE: STATE WRITE ERROR");
  ExpectWrongCard("LCDINITLIGHT:0=ON", "CIE: THIS COMMAND IS VALID FOR LCD CONTROL CARD ONLY");
}

TEST_F(CaeCard, AnalogueMaskIsSet) {
  StartWith(0xF, kAnalogueInput);
  ExpectRequest("SETANMASK:F=3F", {0x50, 0x0F, kWrite, 0x01, 0x3F},
                "CIA: Channel MASK of the card is SET\r\n\rAMS:0xF:0x3F\r\n\r");
  ExpectRequest("SETANMASK:F=3Z", {0x50, 0x0F, kWrite, 0x01, 0x30},
                "CIA: Channel MASK of the card is SET\r\n\rAMS:0xF:0x30\r\n\r");
  ExpectRequest("SETANMASK:F", {0x50, 0x0F, kWrite, 0x01, 0x00},
                "CIA: Channel MASK of the card is SET\r\n\rAMS:0xF:0x00\r\n\r");
}

TEST_F(CaeCard, AnalogueMaskIsReadAndStored) {
  StartWith(0xF, kAnalogueInput);
  adapter.SetRegister(0xF, 0x2A);
  ExpectRequest("GETANMASK:F", {0x50, 0x0F, kRead, 0x01},
                "CIA: MASK is GOT from card\r\n\rAMV:0xF:0x2A\r\n\r");
  adapter.SetRegister(0xF, 0x05);
  ExpectRequest("GETANMASK:F", {0x50, 0x0F, kRead, 0x01},
                "CIA: MASK is GOT from card\r\n\rAMV:0xF:0x05\r\n\r");
  ExpectRequest("STOREANMASK:F", {0x50, 0x0F, kWrite, 0x02},
                "CIA: MASK IS STORED at address F\r\n\r");
}

TEST_F(CaeCard, AnalogueErrors) {
  StartWith(0xF, kAnalogueInput);
  ExpectNoAnswer("SETANMASK:F=3F", "CIE: MASK WRITE ERROR");
  ExpectNoAnswer("GETANMASK:F", "CIE: MASK READ ERROR");
  ExpectNoAnswer("STOREANMASK:F", "CIE: MASK STORE ERROR");
  const std::string wrong = "CIE: THIS COMMAND IS VALID ON ANALOG INPUT CARD ONLY";
  ExpectWrongCard("SETANMASK:1=3F", wrong);
  ExpectWrongCard("GETANMASK:1", wrong);
  ExpectWrongCard("STOREANMASK:1", wrong);
}

TEST_F(CaeCard, ServoPositionsAreStoredAndTaken) {
  StartWith(0x2, kServo);
  ExpectRequest("STORESRVPOS:2", {0x50, 0x02, kWrite, 0x74},
                "CIA: POSITIONS ARE STORED at address 2\r\n\r");
  ExpectRequest("MOVESTRPOS:2", {0x50, 0x02, kWrite, 0x3F},
                "CIA: SERVOS ARE MOVED TO STORED POSITIONS at address 2\r\n\r");
}

TEST_F(CaeCard, ServoEndPositionsAreSet) {
  StartWith(0x2, kServo);
  ExpectRequest("SETSCB3:2=7F", {0x50, 0x02, kWrite, 0xD3, 0x7F},
                "CIA: SERVO PARAM of the card is SET\r\n\rSPS:0x2:SCB3:0x7F\r\n\r");
  ExpectRequest("SETSCX3:2=7F", {0x50, 0x02, kWrite, 0xC3, 0x7F},
                "CIA: SERVO PARAM of the card is SET\r\n\rSPS:0x2:SCX3:0x7F\r\n\r");
  ExpectRequest("SETSCA0:2=0", {0x50, 0x02, kWrite, 0xC0, 0x00},
                "CIA: SERVO PARAM of the card is SET\r\n\rSPS:0x2:SCA0:0x00\r\n\r");
  ExpectRequest("SETSCBz:2=FF", {0x50, 0x02, kWrite, 0xD0, 0xFF},
                "CIA: SERVO PARAM of the card is SET\r\n\rSPS:0x2:SCBz:0xFF\r\n\r");
}

TEST_F(CaeCard, ServoEndPositionsAreRead) {
  StartWith(0x2, kServo);
  adapter.SetRegister(0x2, 0xC4);
  ExpectRequest("GETSCA5:2", {0x50, 0x02, kRead, 0x26},
                "CIA: SERVO PARAM is GOT from card\r\n\rSPG:0x2:SCA5:0xC4\r\n\r");
  ExpectRequest("GETSCB0:2", {0x50, 0x02, kRead, 0x27},
                "CIA: SERVO PARAM is GOT from card\r\n\rSPG:0x2:SCB0:0xC4\r\n\r");
}

TEST_F(CaeCard, ServoErrors) {
  StartWith(0x2, kServo);
  ExpectNoAnswer("STORESRVPOS:2", "CIE: POSITION STORING ERROR");
  ExpectNoAnswer("MOVESTRPOS:2", "CIE: POSITIONS MOVING ERROR");
  ExpectNoAnswer("SETSCA1:2=00", "CIE: PARAM WRITE ERROR");
  ExpectNoAnswer("GETSCA1:2", "CIE: PARAM READ ERROR");
}

TEST_F(CaeCard, ServoCommandsAreForServoCards) {
  StartWith(0x1, kMotor);
  const std::string wrong = "CIE: THIS COMMAND IS VALID ON SERVO CONTROLLER CARD ONLY";
  ExpectWrongCard("STORESRVPOS:1", wrong);
  ExpectWrongCard("MOVESTRPOS:1", "CIE: THIS COMMAND IS LEGAL ON SERVO CONTROLLER CARD ONLY");
  ExpectWrongCard("SETSCA1:1=00", wrong);
  ExpectWrongCard("GETSCA1:1", wrong);
}

TEST_F(CaeCard, MotorRangesAreSet) {
  StartWith(0x4, kMotor);
  ExpectRequest("SETMSR2:4=20", {0x50, 0x04, kWrite, 0xC2, 0x20},
                "CIA: MSR value of the card is SET\r\n\rMPS:0x4:MSR2:0x20\r\n\r");
  ExpectRequest("SETMSRx:4=0A", {0x50, 0x04, kWrite, 0xC0, 0x0A},
                "CIA: MSR value of the card is SET\r\n\rMPS:0x4:MSRx:0x0A\r\n\r");
}

TEST_F(CaeCard, MotorRangesAreReadAndStored) {
  StartWith(0x4, kMotor);
  adapter.SetRegister(0x4, 0x1B);
  ExpectRequest("GETMSR2:4", {0x50, 0x04, kRead, 0x03},
                "CIA: MSR value is GOT from card\r\n\rMSR2:0x4:0x1B\r\n\r");
  ExpectRequest("GETMSRA:4", {0x50, 0x04, kRead, 0x0B},
                "CIA: MSR value is GOT from card\r\n\rMSR10:0x4:0x1B\r\n\r");
  ExpectRequest("STOREMSRS:4", {0x50, 0x04, kWrite, 0xCD},
                "CIA: MSR values are STORED at address 4\r\n\r");
}

TEST_F(CaeCard, MotorErrors) {
  StartWith(0x4, kMotor);
  ExpectNoAnswer("SETMSR1:4=20", "CIE: PARAM WRITE ERROR");
  ExpectNoAnswer("GETMSR1:4", "CIE: PARAM READ ERROR");
  ExpectNoAnswer("STOREMSRS:4", "CIE: MSR STORING ERROR");
  const std::string wrong = "CIE: THIS COMMAND IS VALID ON DC MOTOR CONTROLLER CARD ONLY";
  ExpectWrongCard("SETMSR1:1=20", wrong);
  ExpectWrongCard("GETMSR1:1", wrong);
  ExpectWrongCard("STOREMSRS:1", wrong);
}

TEST_F(CaeCard, ShortCommandsAreSurvived) {
  StartWith(0x0, kServo);
  ExpectRequest("SETSC", {0x50, 0x00, kWrite, 0xC0, 0x00},
                "CIA: SERVO PARAM of the card is SET\r\n\rSPS:0x0:SC:0x00\r\n\r");
  ExpectRequest(":SETSC", {0x50, 0x00, kWrite, 0xC0, 0x00},
                "CIA: SERVO PARAM of the card is SET\r\n\rSPS:0x0:SC:0x00\r\n\r");
  ExpectRequest("2:GETSC", {0x50, 0x00, kRead, 0x23},
                "CIA: SERVO PARAM is GOT from card\r\n\rSPG:0x0:SC2:0x00\r\n\r");
}

TEST_F(CaeCard, ShortAnswerReadsAsZero) {
  StartWith(0x2, kServo);
  adapter.Script({0x50}, {Packet({'Q', 0x02, 0x11, 0xEE}), Packet({'Q', 0x02})});
  ExpectRequest("GETSCA5:2", {0x50, 0x02, kRead, 0x26},
                "CIA: SERVO PARAM is GOT from card\r\n\rSPG:0x2:SCA5:0xEE\r\n\r");
  ExpectRequest("GETSCA5:2", {0x50, 0x02, kRead, 0x26},
                "CIA: SERVO PARAM is GOT from card\r\n\rSPG:0x2:SCA5:0x00\r\n\r");
}

TEST_F(CaeCard, AnswerOfAnotherCardIsNoAnswer) {
  StartWith(0x2, kServo);
  adapter.Script({0x50}, {Packet({'Q', 0x03, 0x00, 0x00})});
  Command("STORESRVPOS:2", "CIE: POSITION STORING ERROR\r\n\r");
}

TEST_F(CaeCard, RequestsRunWhilePollingRuns) {
  WriteConfig({.poll = "TRUE"});
  StartWith(0xF, kAnalogueInput);
  adapter.SetRegister(0xF, 0x15);
  Command("GETANMASK:F", "CIA: MASK is GOT from card\r\n\rAMV:0xF:0x15\r\n\r");
  adapter.ExpectFrame({0x50, 0x0F, kRead, 0x01});
  adapter.ExpectCount({0x20, 0x0F, 0x06}, 5);
}
