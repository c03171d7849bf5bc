// Finding the adapter, the line settings, the check.
#include <fcntl.h>
#include <termios.h>

#include <cstdlib>

#include "support/SerialTest.h"

namespace {

const QList kCheck = Bytes({0x40, 0x6F, 0x9A});

class SerialLink : public SerialTest {
 protected:
  ~SerialLink() override { unsetenv("QELM_TEST_DEVICES"); }

  // What a search finds, a line each.
  static void List(const std::string& lines) { setenv("QELM_TEST_DEVICES", lines.c_str(), 1); }

  // Nine characters of a line make one device name and lose their last: so a search
  // comes upon any device, and behind it upon "/dev/ttyUSB", which is none.
  static std::string Line(const MockBus& bus) { return bus.ListedName() + "|ttyUSB\n"; }
  static std::string Found(const MockBus& bus) { return "/dev/" + bus.ListedName(); }
};

using Devices = std::list<std::string>;

}  // namespace

TEST_F(SerialLink, ListsTheDevicesInTheOrderOfLs) {
  List("tty0\nttyUSB0\nttyUSB1\nttyUSB10\nttyS0\nttyUSB2\n");
  EXPECT_EQ(SERIAL_INTERFACE::GetUSBDevices(),
            (Devices{"/dev/ttyUSB0", "/dev/ttyUSB1", "/dev/ttyUSB10", "/dev/ttyUSB2"}));
}

TEST_F(SerialLink, SplitsALongDeviceNameIntoBrokenOnes) {
  List("ttyUSB100\n");
  EXPECT_EQ(SERIAL_INTERFACE::GetUSBDevices(), (Devices{"/dev/ttyUSB10", "/dev/"}));
}

TEST_F(SerialLink, ListsNothingWhereNothingIs) {
  List("tty0\n");
  EXPECT_EQ(SERIAL_INTERFACE::GetUSBDevices(), Devices());
}

TEST_F(SerialLink, SetsTheLineTo460800BaudRaw) {
  termios cooked{};
  cooked.c_iflag = IGNBRK | IXON | IXOFF | IXANY | ICRNL;
  cooked.c_oflag = OPOST | ONLCR;
  cooked.c_lflag = ECHO | ICANON | ISIG;
  cooked.c_cflag = CS8 | CREAD | CSTOPB | PARODD | CRTSCTS | B9600;
  ASSERT_EQ(tcsetattr(Bus.Line(), TCSANOW, &cooked), 0);
  Connect();
  ASSERT_TRUE(Serial.SetSerialParams());

  termios line{};
  ASSERT_EQ(tcgetattr(Bus.Line(), &line), 0);
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
  Serial.Fd.Adopt(open("/dev/zero", O_RDWR | O_CLOEXEC));
  EXPECT_FALSE(Serial.SetSerialParams());
  EXPECT_EQ(Log.Lines(), Texts{"[ERR] error 25 from tcsetattr"});
}

TEST_F(SerialLink, TheVersionIsFourCharactersBehindTheFirst) {
  struct Case {
    const char* reply;
    const char* version;
  };
  Connect();
  for (const Case& c :
       {Case{"Xv1.2 and more", "v1.2"}, Case{"Xv1.2", "v1.2"}, Case{"Xv1", "v1"}, Case{"X", ""}}) {
    Bus.ExpectFrame(kCheck).Reply(TextBytes(c.reply));
    EXPECT_TRUE(Serial.HardwareCheck("/dev/d"));
    EXPECT_EQ(Log.Lines().back(),
              "[INF] hardware found on /dev/d version: " + std::string(c.version));
  }
}

TEST_F(SerialLink, AGoodReplyThatBeginsWithAZeroByteHasNoVersion) {
  Connect();
  Bus.ExpectFrame(kCheck).Reply(Bytes({0x00, 'v'}));
  EXPECT_TRUE(Serial.HardwareCheck("/dev/d"));
  EXPECT_TRUE(Log.Has("[INF] hardware found on /dev/d version: "));
}

TEST_F(SerialLink, ASilentAdapterIsLogged) {
  Connect();
  Bus.ExpectFrame(kCheck);
  EXPECT_FALSE(Serial.HardwareCheck("/dev/d"));
  EXPECT_EQ(Log.Lines(),
            (Texts{"[INF] try to catch hardware on /dev/d", "[INF] comm timeout /dev/d"}));
}

TEST_F(SerialLink, AnAdapterThatRefusesIsNotLogged) {
  Connect();
  for (const QList& reply : {TextBytes("N"), TextBytes("B"), Bytes({0x12}), QList()}) {
    Bus.ExpectFrame(kCheck).Reply(reply);
    EXPECT_FALSE(Serial.HardwareCheck("/dev/d"));
  }
  EXPECT_EQ(Log.Lines(), Texts(4, "[INF] try to catch hardware on /dev/d"));
}

TEST_F(SerialLink, OpensTheNamedDevice) {
  Bus.ExpectFrame(kCheck).Reply(TextBytes("Xv1.2"));
  Serial.RxBuffer.fill(7);
  EXPECT_TRUE(Serial.Init());
  EXPECT_EQ(Serial.LinkState, 3);
  EXPECT_NE(fcntl(Serial.Fd.Number(), F_GETFL) & O_NONBLOCK, 0);
  EXPECT_NE(fcntl(Serial.Fd.Number(), F_GETFD) & FD_CLOEXEC, 0);
  EXPECT_EQ(Serial.RxBuffer[135], 0);
}

TEST_F(SerialLink, ANamedDeviceThatDoesNotAnswerLeavesTheLinkChecking) {
  Bus.ExpectFrame(kCheck);
  EXPECT_FALSE(Serial.Init());
  EXPECT_EQ(Serial.LinkState, 1);
}

TEST_F(SerialLink, ANamedDeviceThatDoesNotOpenIsLogged) {
  Serial.DeviceName = "/nonexistent";
  EXPECT_FALSE(Serial.Init());
  EXPECT_EQ(Log.Lines(), Texts{"[ERR] unable to open /nonexistent for hardware communication"});
}

TEST_F(SerialLink, AnotherDeviceModeOpensNothing) {
  Serial.DeviceMode = 3;
  EXPECT_FALSE(Serial.Init());
  EXPECT_EQ(Log.Lines(), Texts());
}

TEST_F(SerialLink, ASearchThatFindsNoDeviceIsLogged) {
  Serial.DeviceMode = kSearchDevices;
  EXPECT_FALSE(Serial.Init());
  EXPECT_FALSE(Serial.Init());
  EXPECT_EQ(Serial.LinkState, 0);
  EXPECT_EQ(Log.Lines(), Texts(2, "[ERR] ttyUSB devices couldn't be found"));
}

TEST_F(SerialLink, ASearchStopsAtTheFirstDeviceThatAnswers) {
  Serial.DeviceMode = kSearchDevices;
  List(Line(Bus));
  Bus.ExpectFrame(kCheck).Reply(TextBytes("Xv1.2"));
  EXPECT_TRUE(Serial.Init());
  EXPECT_EQ(Serial.LinkState, 3);
  EXPECT_EQ(Serial.DeviceName, Found(Bus));
  EXPECT_EQ(Log.Lines(), (Texts{"[INF] try to catch hardware on " + Found(Bus),
                                "[INF] hardware found on " + Found(Bus) + " version: v1.2"}));
}

TEST_F(SerialLink, ASearchGoesOnFromASilentDeviceAndFromOneThatDoesNotOpen) {
  Serial.DeviceMode = kSearchDevices;
  List(Line(Bus) + Line(Bus));
  Bus.ExpectFrame(kCheck);
  Bus.ExpectFrame(kCheck).Reply(TextBytes("Xv1.2"));
  EXPECT_TRUE(Serial.Init());
  EXPECT_EQ(Serial.LinkState, 3);
  EXPECT_EQ(Log.Lines(), (Texts{"[INF] try to catch hardware on " + Found(Bus),
                                "[INF] comm timeout " + Found(Bus),
                                "[ERR] unable to  open /dev/ttyUSB for hardware communication",
                                "[INF] try to catch hardware on " + Found(Bus),
                                "[INF] hardware found on " + Found(Bus) + " version: v1.2"}));
}

TEST_F(SerialLink, ASearchWithoutAnAnswerLeavesNothingOpen) {
  Serial.DeviceMode = kSearchDevices;
  List(Line(Bus));
  Bus.ExpectFrame(kCheck);
  EXPECT_FALSE(Serial.Init());
  EXPECT_EQ(Serial.LinkState, 0);
  EXPECT_FALSE(Serial.Fd.IsOpen());
}
