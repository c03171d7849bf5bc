// Finding the adapter, the line settings, the check.
#include <fcntl.h>
#include <termios.h>

#include <cstdlib>

#include "support/SerialTest.h"

namespace {

const QList kCheck = List({0x40, 0x6F, 0x9A});

class SerialLink : public SerialTest {
 protected:
  ~SerialLink() override { unsetenv("QELM_TEST_DEVICES"); }

  // A line each.
  static void SearchFinds(const std::string& lines) {
    setenv("QELM_TEST_DEVICES", lines.c_str(), 1);
  }

  // Nine characters of a line make one device name and lose their last: so a search
  // comes upon any device, and behind it upon "/dev/ttyUSB", which is none.
  std::string Line() const { return bus.ListedName() + "|ttyUSB\n"; }
  std::string Found() const { return "/dev/" + bus.ListedName(); }
};

using Devices = std::list<std::string>;

}  // namespace

TEST_F(SerialLink, ListsTheDevicesInTheOrderOfLs) {
  SearchFinds("tty0\nttyUSB0\nttyUSB1\nttyUSB10\nttyS0\nttyUSB2\n");
  EXPECT_EQ(SERIAL_INTERFACE::GetUSBDevices(),
            (Devices{"/dev/ttyUSB0", "/dev/ttyUSB1", "/dev/ttyUSB10", "/dev/ttyUSB2"}));
}

TEST_F(SerialLink, SplitsALongDeviceNameIntoBrokenOnes) {
  SearchFinds("ttyUSB100\n");
  EXPECT_EQ(SERIAL_INTERFACE::GetUSBDevices(), (Devices{"/dev/ttyUSB10", "/dev/"}));
}

TEST_F(SerialLink, ListsNothingWhereNothingIs) {
  SearchFinds("tty0\n");
  EXPECT_EQ(SERIAL_INTERFACE::GetUSBDevices(), Devices());
}

TEST_F(SerialLink, SetsTheLineTo460800BaudRaw) {
  termios cooked{};
  cooked.c_iflag = IGNBRK | IXON | IXOFF | IXANY | ICRNL;
  cooked.c_oflag = OPOST | ONLCR;
  cooked.c_lflag = ECHO | ICANON | ISIG;
  cooked.c_cflag = CS8 | CREAD | CSTOPB | PARODD | CRTSCTS | B9600;
  ASSERT_EQ(tcsetattr(bus.Line(), TCSANOW, &cooked), 0);
  Connect();
  ASSERT_TRUE(serial.SetSerialParams());

  termios line{};
  ASSERT_EQ(tcgetattr(bus.Line(), &line), 0);
  EXPECT_EQ(cfgetispeed(&line), static_cast<speed_t>(B460800));
  EXPECT_EQ(cfgetospeed(&line), static_cast<speed_t>(B460800));
  EXPECT_EQ(line.c_iflag, 0U);
  EXPECT_EQ(line.c_oflag, 0U);
  EXPECT_EQ(line.c_lflag, 0U);
  EXPECT_EQ(line.c_cflag & CSIZE, static_cast<tcflag_t>(CS8));
  EXPECT_EQ(line.c_cflag & (CREAD | CLOCAL), static_cast<tcflag_t>(CREAD | CLOCAL));
  EXPECT_EQ(line.c_cflag & (CRTSCTS | PARENB | PARODD | CSTOPB), 0U);
  EXPECT_EQ(line.c_cc[VTIME], 50);
  EXPECT_EQ(line.c_cc[VMIN], 0);
}

TEST_F(SerialLink, SettingsThatAreRejectedAreLogged) {
  serial.Fd.Adopt(open("/dev/zero", O_RDWR | O_CLOEXEC));
  EXPECT_FALSE(serial.SetSerialParams());
  EXPECT_EQ(log.Lines(), Texts{"[ERR] error 25 from tcsetattr"});
}

TEST_F(SerialLink, TheVersionIsFourCharactersBehindTheFirst) {
  struct Case {
    const char* reply;
    const char* version;
  };
  Connect();
  for (const Case& c :
       {Case{"Xv1.2 and more", "v1.2"}, Case{"Xv1.2", "v1.2"}, Case{"Xv1", "v1"}, Case{"X", ""}}) {
    bus.ExpectFrame(kCheck).Reply(List(c.reply));
    EXPECT_TRUE(serial.HardwareCheck("/dev/d"));
    EXPECT_EQ(log.Lines().back(),
              "[INF] hardware found on /dev/d version: " + std::string(c.version));
  }
}

TEST_F(SerialLink, AGoodReplyThatBeginsWithAZeroByteHasNoVersion) {
  Connect();
  bus.ExpectFrame(kCheck).Reply(List({0x00, 'v'}));
  EXPECT_TRUE(serial.HardwareCheck("/dev/d"));
  EXPECT_TRUE(log.Has("[INF] hardware found on /dev/d version: "));
}

TEST_F(SerialLink, ASilentAdapterIsLogged) {
  Connect();
  bus.ExpectFrame(kCheck);
  EXPECT_FALSE(serial.HardwareCheck("/dev/d"));
  EXPECT_EQ(log.Lines(),
            (Texts{"[INF] try to catch hardware on /dev/d", "[INF] comm timeout /dev/d"}));
}

TEST_F(SerialLink, AnAdapterThatRefusesIsNotLogged) {
  Connect();
  for (const QList& reply : {List("N"), List("B"), List({0x12}), QList()}) {
    bus.ExpectFrame(kCheck).Reply(reply);
    EXPECT_FALSE(serial.HardwareCheck("/dev/d"));
  }
  EXPECT_EQ(log.Lines(), Texts(4, "[INF] try to catch hardware on /dev/d"));
}

TEST_F(SerialLink, OpensTheNamedDevice) {
  bus.ExpectFrame(kCheck).Reply(List("Xv1.2"));
  serial.RxBuffer.fill(7);
  EXPECT_TRUE(serial.Init());
  EXPECT_EQ(serial.LinkState, 3);
  EXPECT_NE(fcntl(serial.Fd.Number(), F_GETFL) & O_NONBLOCK, 0);
  EXPECT_NE(fcntl(serial.Fd.Number(), F_GETFD) & FD_CLOEXEC, 0);
  EXPECT_EQ(serial.RxBuffer[135], 0);
}

TEST_F(SerialLink, ANamedDeviceThatDoesNotAnswerLeavesTheLinkChecking) {
  bus.ExpectFrame(kCheck);
  EXPECT_FALSE(serial.Init());
  EXPECT_EQ(serial.LinkState, 1);
}

TEST_F(SerialLink, ANamedDeviceThatDoesNotOpenIsLogged) {
  serial.DeviceName = "/nonexistent";
  EXPECT_FALSE(serial.Init());
  EXPECT_EQ(log.Lines(), Texts{"[ERR] unable to open /nonexistent for hardware communication"});
}

TEST_F(SerialLink, AnotherDeviceModeOpensNothing) {
  serial.DeviceMode = 3;
  EXPECT_FALSE(serial.Init());
  EXPECT_EQ(log.Lines(), Texts());
}

TEST_F(SerialLink, ASearchThatFindsNoDeviceIsLogged) {
  serial.DeviceMode = kSearchDevices;
  EXPECT_FALSE(serial.Init());
  EXPECT_FALSE(serial.Init());
  EXPECT_EQ(serial.LinkState, 0);
  EXPECT_EQ(log.Lines(), Texts(2, "[ERR] ttyUSB devices couldn't be found"));
}

TEST_F(SerialLink, ASearchStopsAtTheFirstDeviceThatAnswers) {
  serial.DeviceMode = kSearchDevices;
  SearchFinds(Line());
  bus.ExpectFrame(kCheck).Reply(List("Xv1.2"));
  EXPECT_TRUE(serial.Init());
  EXPECT_EQ(serial.LinkState, 3);
  EXPECT_EQ(serial.DeviceName, Found());
  EXPECT_EQ(log.Lines(), (Texts{"[INF] try to catch hardware on " + Found(),
                                "[INF] hardware found on " + Found() + " version: v1.2"}));
}

TEST_F(SerialLink, ASearchGoesOnFromASilentDeviceAndFromOneThatDoesNotOpen) {
  serial.DeviceMode = kSearchDevices;
  SearchFinds(Line() + Line());
  bus.ExpectFrame(kCheck);
  bus.ExpectFrame(kCheck).Reply(List("Xv1.2"));
  EXPECT_TRUE(serial.Init());
  EXPECT_EQ(serial.LinkState, 3);
  EXPECT_EQ(log.Lines(),
            (Texts{"[INF] try to catch hardware on " + Found(), "[INF] comm timeout " + Found(),
                   "[ERR] unable to  open /dev/ttyUSB for hardware communication",
                   "[INF] try to catch hardware on " + Found(),
                   "[INF] hardware found on " + Found() + " version: v1.2"}));
}

TEST_F(SerialLink, ASearchWithoutAnAnswerLeavesNothingOpen) {
  serial.DeviceMode = kSearchDevices;
  SearchFinds(Line());
  bus.ExpectFrame(kCheck);
  EXPECT_FALSE(serial.Init());
  EXPECT_EQ(serial.LinkState, 0);
  EXPECT_FALSE(serial.Fd.IsOpen());
}
