// The link itself: finding the adapter, the line settings, opening and checking.
#include <fcntl.h>
#include <sys/ioctl.h>
#include <termios.h>

#include <array>
#include <cerrno>
#include <cstdio>

#include "bus/ReplyError.h"
#include "bus/SerialInterface.h"
#include "runtime/Pause.h"
#include "runtime/Values.h"

namespace {

constexpr int kOpenFlags = O_RDWR | O_NOCTTY | O_NONBLOCK | O_SYNC | O_CLOEXEC;

// Some converters need the settings by this request as well; the others refuse it.
constexpr unsigned long kSetAttributes = 0x403C7414;

termios RawLine() {
  termios line{};
  cfmakeraw(&line);
  cfsetispeed(&line, B460800);
  cfsetospeed(&line, B460800);
  line.c_iflag &= ~static_cast<tcflag_t>(IGNBRK | IXON | IXOFF | IXANY);
  line.c_cflag &= ~static_cast<tcflag_t>(CRTSCTS | PARENB | PARODD | CSTOPB);
  line.c_cflag |= CS8 | CREAD | CLOCAL;
  line.c_lflag = 0;
  line.c_oflag = 0;
  line.c_cc[VTIME] = 50;
  line.c_cc[VMIN] = 0;
  return line;
}

}  // namespace

std::list<std::string> SERIAL_INTERFACE::GetUSBDevices() {
  // Room for ttyUSB0 to ttyUSB99 and the line feed. A longer name is read in two pieces,
  // neither of which is a device: docs/design/contract.md.
  std::array<char, 10> name{};
  std::list<std::string> devices;
  FILE* pipe = popen("ls /dev | grep ttyUSB", "re");
  if (pipe == nullptr) return devices;
  while (std::fgets(name.data(), name.size(), pipe) != nullptr) {
    std::string device = std::string("/dev/") + name.data();
    device.pop_back();
    devices.push_back(device);
  }
  pclose(pipe);
  return devices;
}

bool SERIAL_INTERFACE::SetSerialParams() {
  termios line = RawLine();
  ioctl(Fd.Number(), kSetAttributes, &line);
  if (tcsetattr(Fd.Number(), TCSANOW, &line) == 0) return true;
  LogLine("ERR", "error " + ITOA(errno) + " from tcsetattr");
  return false;
}

bool SERIAL_INTERFACE::HardwareCheck(const std::string& device) {
  LogLine("INF", "try to catch hardware on " + device);
  Sleep(2000);
  const QList reply = Comm2HW({kHardwareCheckPayload.begin(), kHardwareCheckPayload.end()});
  switch (GetQListError(reply)) {
    case kReplyGood: {
      const std::string text = Convert_QList2String(reply);
      const std::string version = text.empty() ? "" : text.substr(1, 4);
      LogLine("INF", "hardware found on " + device + " version: " + version);
      return true;
    }
    case kReplyTimeout:
      LogLine("INF", "comm timeout " + device);
      return false;
    default:
      return false;
  }
}

bool SERIAL_INTERFACE::Init() {
  RxBuffer[0] = 0;
  switch (DeviceMode) {
    case kNamedDevice:
      return OpenDevice("unable to open ") && CheckDevice();
    case kSearchDevices:
      return SearchDevices();
    default:
      return false;
  }
}

bool SERIAL_INTERFACE::SearchDevices() {
  const std::list<std::string> devices = GetUSBDevices();
  if (devices.empty()) LogLine("ERR", "ttyUSB devices couldn't be found");
  CloseLink();
  for (const std::string& device : devices) {
    DeviceName = device;
    if (!OpenDevice("unable to  open ")) continue;
    if (CheckDevice()) return true;
    CloseLink();
  }
  return false;
}

// `failure` differs by a blank between the two modes: docs/design/contract.md.
bool SERIAL_INTERFACE::OpenDevice(const std::string& failure) {
  Fd.Close();
  Fd.Adopt(open(DeviceName.c_str(), kOpenFlags));
  if (Fd.IsOpen()) return true;
  LogLine("ERR", failure + DeviceName + " for hardware communication");
  return false;
}

bool SERIAL_INTERFACE::CheckDevice() {
  RxBuffer.fill(0);
  LinkState = kLinkChecking;
  if (!SetSerialParams() || !HardwareCheck(DeviceName)) return false;
  LinkState = kLinkUp;
  return true;
}

void SERIAL_INTERFACE::LogLine(const std::string& tag, const std::string& text) {
  Logger.LOG(tag, text, 1);
}
