// IO commands: from the typed line to the frame on the bus, or the error on CAE.
#include "DaemonTest.h"

namespace {

class IoCommands : public DaemonTest {
 protected:
  // One card of each output kind, and a digital input at 3.
  void StartWithCards() {
    PlugCard(0x0, kServo);
    PlugCard(0x3, kDigitalInput);
    PlugCard(0x5, kDigitalOutput);
    PlugCard(0x6, kMotor);
    PlugCard(0x9, kInfrared);
    PlugCard(0xE, kLcd);
    StartOnBus();
    io = Connect(kIo);
  }

  // The line is refused: CAE says so, and no frame goes out before the next good one.
  void ExpectRefused(const std::string& command, Place place = Place::current()) {
    io.Send(command + "\r\n", place);
    ExpectIllegal(io, command, place);
    ExpectNothingElse(place);
  }

  // A further command gives the very next frame, and CAE has nothing more to say.
  void ExpectNothingElse(Place place = Place::current()) {
    io.Send("aElLO\r\n", place);
    adapter.ExpectFrames({{0x10, 0x0E, 0x01, 0x01}}, place);
    ExpectAnswer(place);
  }

  void ExpectFrameFor(const std::string& command, const Bytes& frame,
                      Place place = Place::current()) {
    io.Send(command + "\r\n", place);
    adapter.ExpectFrames({frame}, place);
  }

  Client io;
};

}  // namespace

TEST_F(IoCommands, DigitalOutputGetsBothBlocks) {
  StartWithCards();
  ExpectFrameFor("a5b1dFB", {0x10, 0x05, 0x02, 0xFF, 0xFB});
  ExpectFrameFor("a5b0d12", {0x10, 0x05, 0x02, 0x12, 0xFB});
  ExpectAnswer();
}

TEST_F(IoCommands, ServoGetsSixBlocks) {
  StartWithCards();
  ExpectFrameFor("a0b4d81", {0x10, 0x00, 0x06, 0x80, 0x80, 0x80, 0x80, 0x81, 0x80});
  ExpectFrameFor("a0b0d00", {0x10, 0x00, 0x06, 0x00, 0x80, 0x80, 0x80, 0x81, 0x80});
}

TEST_F(IoCommands, MotorGetsFourBlocksOfItsSix) {
  StartWithCards();
  ExpectFrameFor("a6b3d7F", {0x10, 0x06, 0x04, 0x00, 0x00, 0x00, 0x7F});
  ExpectFrameFor("a6b5d11", {0x10, 0x06, 0x04, 0x00, 0x00, 0x00, 0x7F});
}

TEST_F(IoCommands, BlockBeyondTheCardRefreshesTheOthers) {
  StartWithCards();
  ExpectFrameFor("a5bFd00", {0x10, 0x05, 0x02, 0xFF, 0xFF});
  ExpectFrameFor("a5b2d00", {0x10, 0x05, 0x02, 0xFF, 0xFF});
}

TEST_F(IoCommands, LowerCaseDigitsReadAsZero) {
  StartWithCards();
  ExpectFrameFor("a5b1dfb", {0x10, 0x05, 0x02, 0xFF, 0x00});
  ExpectFrameFor("agbgd0A", {0x10, 0x00, 0x06, 0x0A, 0x80, 0x80, 0x80, 0x80, 0x80});
}

TEST_F(IoCommands, BlockCommandToAnInputCardStoresAndSendsNothing) {
  StartWithCards();
  io.Send("a3b0d12\r\n");
  ExpectNothingElse();
  Command("GETLASTINPST:3=0", "CIA: LAST INPUT STATE SENT ON IO INTERFACE\r\n\r");
  io.ExpectBytes("a3b0d12\r\n\r");
}

TEST_F(IoCommands, BlockCommandToAnEmptyAddressSendsNothing) {
  StartWithCards();
  io.Send("aFb0d12\r\n");
  ExpectNothingElse();
}

TEST_F(IoCommands, BlockCommandIgnoresWhatFollowsItsValue) {
  StartWithCards();
  ExpectFrameFor("a5b1d12 and more", {0x10, 0x05, 0x02, 0xFF, 0x12});
}

TEST_F(IoCommands, EmptyPiecesArePassedOver) {
  StartWithCards();
  io.Send("\r\na5b0d00\r\n\r\na5b1d00\r\n\r\n");
  adapter.ExpectFrames({{0x10, 0x05, 0x02, 0x00, 0xFF}, {0x10, 0x05, 0x02, 0x00, 0x00}});
  ExpectNothingElse();
}

TEST_F(IoCommands, LastPieceNeedsNoSeparator) {
  StartWithCards();
  io.Send("a5b0d01");
  adapter.ExpectFrames({{0x10, 0x05, 0x02, 0x01, 0xFF}});
}

TEST_F(IoCommands, OtherSeparatorsCutTheMessage) {
  WriteConfig({.io_input = "||"});
  PlugCard(5, kDigitalOutput);
  StartOnBus();
  io = Connect(kIo);
  io.Send("a5b0d01||a5b1d02||");
  adapter.ExpectFrames({{0x10, 0x05, 0x02, 0x01, 0xFF}, {0x10, 0x05, 0x02, 0x01, 0x02}});
  io.Send("x|y||");
  cae.ExpectBytes("COE:Illegal command -> x|y\r\n\r>\r\n\r");
}

TEST_F(IoCommands, EmptySeparatorMakesTheMessageOneCommand) {
  WriteConfig({.io_input = ""});
  PlugCard(5, kDigitalOutput);
  StartOnBus();
  io = Connect(kIo);
  io.Send("a5b0d01\r\na5b1d02\r\n");
  adapter.ExpectFrames({{0x10, 0x05, 0x02, 0x01, 0xFF}});
  io.Send("zz");
  cae.ExpectBytes("COE:Illegal command -> zz\r\n\r>\r\n\r");
}

TEST_F(IoCommands, ErrorAnswersEndWithTheSeparatorOfCae) {
  WriteConfig({.cae_input = ";", .cae_output = "#"});
  StartDaemon();
  cae = Dial(kCae);
  cae.ReadUntil("(Type HELP for help)\r\n>\r\n\r");
  io = Connect(kIo);
  io.Send("bad\r\n");
  cae.ExpectBytes("COE:Illegal command -> bad#\r>#\r");
}

TEST_F(IoCommands, CommandsAfterAnIllegalOneAreCarriedOut) {
  StartWithCards();
  io.Send("what\r\na5b0d01\r\n");
  ExpectIllegal(io, "what");
  adapter.ExpectFrames({{0x10, 0x05, 0x02, 0x01, 0xFF}});
}

TEST_F(IoCommands, IllegalCommandsAreAnsweredOnCaeOnly) {
  StartWithCards();
  ExpectRefused("z");
  ExpectRefused("A5b1dFB");
  ExpectRefused("a5B1dFB");
  ExpectRefused("a5x");
  io.ExpectSilence();
}

TEST_F(IoCommands, ShortCommandsAreSurvived) {
  StartWithCards();
  ExpectRefused("a");
  ExpectRefused("a5");
  ExpectRefused("a5b");
  ExpectRefused("a5b1");
  ExpectRefused("aEl");
  ExpectRefused("aElC");
  ExpectRefused("a9s");
}

TEST_F(IoCommands, AbsentValueDigitsReadAsZero) {
  StartWithCards();
  ExpectFrameFor("a5b1d", {0x10, 0x05, 0x02, 0xFF, 0x00});
  ExpectFrameFor("aElPAp", {0x10, 0x0E, 0x04, 0x09, 0x00, 0x00, 0x00});
}

TEST_F(IoCommands, OneDigitIsTheLowDigit) {
  StartWithCards();
  ExpectFrameFor("a5b1dF", {0x10, 0x05, 0x02, 0xFF, 0x0F});
  ExpectFrameFor("aElPAp1", {0x10, 0x0E, 0x04, 0x09, 0x01, 0x00, 0x00});
  ExpectFrameFor("aElPAp0A2", {0x10, 0x0E, 0x04, 0x09, 0x0A, 0x02, 0x00});
}

TEST_F(IoCommands, InfraredGetsItsStream) {
  StartWithCards();
  ExpectFrameFor("a9sHS41", {0x10, 0x09, 0x02, 0x01, 0x41});
  ExpectFrameFor("a9sHS414", {0x10, 0x09, 0x02, 0x01, 0x41});
  ExpectFrameFor("a9sHS434F434B524F414348",
                 {0x10, 0x09, 0x0A, 0x09, 'C', 'O', 'C', 'K', 'R', 'O', 'A', 'C', 'H'});
  ExpectFrameFor("a9sHSg1Fz", {0x10, 0x09, 0x03, 0x02, 0x01, 0xF0});
  ExpectFrameFor("a9sHS", {0x10, 0x09, 0x01, 0x00});
}

TEST_F(IoCommands, LongestInfraredStreamIsSent) {
  StartWithCards();
  std::string digits;
  for (int byte = 0; byte < 35; ++byte) digits += "A5";
  ExpectFrameFor("a9sHS" + digits, Bytes{0x10, 0x09, 36, 35} + Bytes(35, 0xA5));
  ExpectRefused("a9sHS" + digits + "A5");
}

TEST_F(IoCommands, InfraredStreamElsewhereIsIllegal) {
  StartWithCards();
  ExpectRefused("aEsHS41");
  ExpectRefused("a5sHS41");
  ExpectRefused("a9sXHS41");
  ExpectRefused("a9sHs41");
}

TEST_F(IoCommands, LcdControlCodesAreSent) {
  StartWithCards();
  ExpectFrameFor("aElCL", {0x10, 0x0E, 0x01, 0x00});
  ExpectFrameFor("aElLO", {0x10, 0x0E, 0x01, 0x01});
  ExpectFrameFor("aElLF", {0x10, 0x0E, 0x01, 0x02});
  ExpectFrameFor("aElCO", {0x10, 0x0E, 0x01, 0x03});
  ExpectFrameFor("aElCF", {0x10, 0x0E, 0x01, 0x04});
  ExpectFrameFor("aElBO", {0x10, 0x0E, 0x01, 0x05});
  ExpectFrameFor("aElBF", {0x10, 0x0E, 0x01, 0x06});
}

TEST_F(IoCommands, LcdControlElsewhereIsIllegal) {
  StartWithCards();
  ExpectRefused("aElXX");
  ExpectRefused("aElcl");
  ExpectRefused("a5lCL");
  ExpectRefused("aFlCL");
}

TEST_F(IoCommands, LcdTextIsSentWithItsPosition) {
  StartWithCards();
  ExpectFrameFor("aElPAp0301tTail of the cat", Bytes{0x10, 0x0E, 19, 0x09, 0x03, 0x01} +
                                                   Bytes{'T', 'a', 'i', 'l', ' ', 'o', 'f', ' ',
                                                         't', 'h', 'e', ' ', 'c', 'a', 't', 0x00});
  ExpectFrameFor("aElPAp0000t", {0x10, 0x0E, 0x04, 0x09, 0x00, 0x00, 0x00});
}

TEST_F(IoCommands, LcdTextMayStandBesideTheGlass) {
  StartWithCards();
  ExpectFrameFor("aElPAp1F0A?z", {0x10, 0x0E, 0x05, 0x09, 0x1F, 0x0A, 'z', 0x00});
}

TEST_F(IoCommands, LcdTextIsFoundByItsMarkAnywhere) {
  StartWithCards();
  ExpectFrameFor("aElCLPAp", {0x10, 0x0E, 0x04, 0x09, 0xA0, 0x00, 0x00});
}

TEST_F(IoCommands, LcdTextElsewhereIsIllegal) {
  StartWithCards();
  ExpectRefused("a5lPAp0000tHello");
  ExpectRefused("aFlPAp0000tHello");
}

TEST_F(IoCommands, LongestLcdTextIsSent) {
  StartWithCards();
  ExpectFrameFor("aElPAp0000t" + std::string(34, 'w'),
                 Bytes{0x10, 0x0E, 38, 0x09, 0x00, 0x00} + Bytes(34, 'w') + Bytes{0x00});
}

TEST_F(IoCommands, LongerLcdTextEndsTheProcess) {
  StartWithCards();
  io.Send("aElPAp0000t" + std::string(35, 'w') + "\r\n");
  ExpectAbort();
}

TEST_F(IoCommands, LongerLcdTextEndsTheProcessWhateverTheCard) {
  StartDaemon();
  io = Connect(kIo);
  io.Send("aFlPAp0000t" + std::string(35, 'w') + "\r\n");
  ExpectAbort();
}
