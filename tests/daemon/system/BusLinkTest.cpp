// Finding the adapter, its line settings, and the cable that is pulled and plugged.
#include <termios.h>
#include <unistd.h>

#include <algorithm>

#include "DaemonTest.h"

namespace {

class BusLink : public DaemonTest {
 protected:
  bool HoldsOpen(const FakeAdapter& held) {
    const auto targets = daemon.Descriptors();
    return std::count(targets.begin(), targets.end(), held.SlavePath()) == 1;
  }
};

const Bytes kHardwareCheck{0x40, 0x6F, 0x9A};
constexpr char kNone[] = "ttyUSB devices couldn't be found";

}  // namespace

TEST_F(BusLink, AdapterIsCheckedAndItsVersionLogged) {
  adapter.SetVersion("X9.87 and more");
  adapter.Plug();
  StartDaemon();
  adapter.ExpectFrames({kHardwareCheck});
  ExpectLog("INF", "hardware found on /dev/ttyUSB0 version: 9.87");
  ExpectLogOrder({"[INF] try to catch hardware on /dev/ttyUSB0",
                  "[INF] hardware found on /dev/ttyUSB0 version: 9.87"});
}

TEST_F(BusLink, ShortVersionIsSurvived) {
  adapter.SetVersion("X9");
  StartOnBus();
  ExpectAnswer();
}

TEST_F(BusLink, LineIsRawAt460800Baud) {
  StartOnBus();
  termios line{};
  ASSERT_EQ(tcgetattr(adapter.SlaveDescriptor(), &line), 0);
  EXPECT_EQ(cfgetispeed(&line), speed_t{B460800});
  EXPECT_EQ(cfgetospeed(&line), speed_t{B460800});
  EXPECT_EQ(line.c_iflag, tcflag_t{0});
  EXPECT_EQ(line.c_oflag, tcflag_t{0});
  EXPECT_EQ(line.c_lflag, tcflag_t{0});
  EXPECT_EQ(line.c_cflag & (CSIZE | PARENB | PARODD | CSTOPB | CRTSCTS), tcflag_t{CS8});
  EXPECT_EQ(line.c_cflag & (CREAD | CLOCAL), tcflag_t{CREAD | CLOCAL});
  EXPECT_EQ(line.c_cc[VTIME], 50);
  EXPECT_EQ(line.c_cc[VMIN], 0);
}

TEST_F(BusLink, WithoutDiscoveryTheBusStaysQuiet) {
  WriteConfig({.discover = "FALSE"});
  adapter.Plug();
  StartDaemon();
  cae = Connect(kCae);
  adapter.ExpectFrames({kHardwareCheck});
  Command("REBOOT:0", "CIE: BUS WRITE ERROR\r\n\r");
  adapter.ExpectFrames({{0x50, 0x00, 0x01, 0xAB}});
}

TEST_F(BusLink, NoDeviceIsLoggedEveryRound) {
  StartDaemon();
  ExpectLog("ERR", kNone, 3);
  ExpectNotLogged("try to catch");
}

TEST_F(BusLink, SecondAdapterIsTakenWhenTheFirstIsSilent) {
  FakeAdapter second("/dev/ttyUSB1");
  adapter.Always(kHardwareCheck, Silence());
  adapter.Plug();
  second.Plug();
  StartDaemon();
  ExpectLog("INF", "hardware found on /dev/ttyUSB1 version: v1.2");
  ExpectLogOrder({"[INF] try to catch hardware on /dev/ttyUSB0", "[INF] comm timeout /dev/ttyUSB0",
                  "[INF] try to catch hardware on /dev/ttyUSB1",
                  "[INF] hardware found on /dev/ttyUSB1 version: v1.2"});
  EXPECT_TRUE(HoldsOpen(second));
  EXPECT_FALSE(HoldsOpen(adapter));
}

TEST_F(BusLink, FirstAdapterThatAnswersEndsTheSearch) {
  FakeAdapter second("/dev/ttyUSB1");
  second.Plug();
  StartOnBus();
  EXPECT_TRUE(HoldsOpen(adapter));
  EXPECT_FALSE(HoldsOpen(second));
  ExpectNotLogged("/dev/ttyUSB1");
}

TEST_F(BusLink, DevicesAreTriedInTheOrderOfTheirNames) {
  FakeAdapter tenth("/dev/ttyUSB10");
  FakeAdapter second("/dev/ttyUSB2");
  tenth.Always(kHardwareCheck, Silence());
  tenth.Plug();
  second.Plug();
  StartDaemon();
  ExpectLog("INF", "hardware found on /dev/ttyUSB2 version: v1.2");
  ExpectLogOrder(
      {"[INF] comm timeout /dev/ttyUSB10", "[INF] try to catch hardware on /dev/ttyUSB2"});
}

TEST_F(BusLink, LongerNamesAreSplit) {
  FakeAdapter far("/dev/ttyUSB100");
  far.Plug();
  StartDaemon();
  ExpectLog("ERR", "unable to  open /dev/ttyUSB10 for hardware communication");
  ExpectLog("ERR", "unable to  open /dev/ for hardware communication");
  ExpectNotLogged("hardware found");
}

TEST_F(BusLink, DeviceThatDoesNotOpenIsPassedOver) {
  ASSERT_EQ(symlink("/dev/none", "/dev/ttyUSB0"), 0);
  FakeAdapter second("/dev/ttyUSB1");
  second.Plug();
  StartDaemon();
  ExpectLog("INF", "hardware found on /dev/ttyUSB1 version: v1.2");
  ExpectLogOrder({"[ERR] unable to  open /dev/ttyUSB0 for hardware communication",
                  "[INF] try to catch hardware on /dev/ttyUSB1"});
  unlink("/dev/ttyUSB0");
}

TEST_F(BusLink, DeviceWithoutLineSettingsIsPassedOver) {
  WriteFile("/dev/ttyUSB0", "");
  FakeAdapter second("/dev/ttyUSB1");
  second.Plug();
  StartDaemon();
  ExpectLog("INF", "hardware found on /dev/ttyUSB1 version: v1.2");
  ExpectLogOrder({"[ERR] error 25 from tcsetattr", "[INF] try to catch hardware on /dev/ttyUSB1"});
  ExpectNotLogged("try to catch hardware on /dev/ttyUSB0");
  unlink("/dev/ttyUSB0");
}

TEST_F(BusLink, SilentAdapterIsAskedAgain) {
  adapter.Script(kHardwareCheck, {Silence(), Silence()});
  adapter.Plug();
  StartDaemon();
  ExpectLog("INF", "hardware found on /dev/ttyUSB0 version: v1.2");
  EXPECT_EQ(CountLogged("[INF] comm timeout /dev/ttyUSB0"), 2);
  EXPECT_EQ(CountLogged("[INF] try to catch hardware on /dev/ttyUSB0"), 3);
}

TEST_F(BusLink, ErrorAnswersToTheCheckAreNotLogged) {
  adapter.Script(kHardwareCheck, {Packet({'N', 'O'}), Packet({}), Packet({0x12}), Packet({'#'}),
                                  Packet({'$'}), Packet({'B'}), Packet({'C'})});
  adapter.Plug();
  StartDaemon();
  ExpectLog("INF", "hardware found on /dev/ttyUSB0 version: v1.2");
  EXPECT_EQ(CountLogged("[INF] comm timeout /dev/ttyUSB0"), 0);
  EXPECT_EQ(CountLogged("[INF] try to catch hardware on /dev/ttyUSB0"), 8);
}

TEST_F(BusLink, CableIsPulledAndPluggedAgain) {
  PlugCard(5, kDigitalOutput);
  StartOnBus();
  Client io = Connect(kIo);
  adapter.Pull();
  io.Send("a5b0d01\r\n");
  ExpectLog("INF", "comm timeout /dev/ttyUSB0");
  ExpectLog("ERR", kNone);
  EXPECT_FALSE(HoldsOpen(adapter));
  io.Send("a5b0d02\r\nend\r\n");
  cae.ExpectBytes("COE:Illegal command -> end\r\n\r>\r\n\r");
  adapter.ForgetFrames();
  adapter.Plug();
  adapter.ExpectFrames({kHardwareCheck, {0x10, 5, 2, 0x02, 0xFF}, {0x30}});
  ExpectLog("INF", "hardware found on /dev/ttyUSB0 version: v1.2", 2);
}

TEST_F(BusLink, DeviceThatVanishesIsLoggedAndLookedForAgain) {
  PlugCard(5, kDigitalOutput);
  StartOnBus();
  Client io = Connect(kIo);
  adapter.HangUp();
  io.Send("a5b0d01\r\n");
  ExpectLog("ERR", "unable to  write to /dev/ttyUSB0");
  ExpectLog("INF", "comm timeout /dev/ttyUSB0");
  ExpectLog("ERR", "unable to  open /dev/ttyUSB0 for hardware communication");
  adapter.Pull();
  FakeAdapter other;
  other.Plug();
  ExpectLog("INF", "hardware found on /dev/ttyUSB0 version: v1.2", 2);
}
