#include "Qelm.h"

#include <filesystem>
#include <fstream>

namespace {

constexpr char kPidFile[] = "/run/qelm/qelm.pid";
constexpr char kPrompt[] = ">\r\n\r";

void WriteConfiguration(int percent) {
  std::ofstream file("/etc/qelm/qelmconf.xml");
  file << "<QELMConfig><Debuglog File='/run/qelm/qelm.log' Loglevel='1'/><Speed Percent='"
       << percent << "'/><AutoDiscover Action='True'/><Interfaces>";
  const char* const names[] = {"CAE", "IO", "MON"};
  for (int i = 0; i < 3; ++i)
    file << "<Interface Name='" << names[i] << "' Port='" << kCaePort + i << "'/>";
  file << "</Interfaces></QELMConfig>\n";
}

Stream Greeted(int port) {
  Stream client = ConnectTo(port);
  client.ReadUntil("\r\n\r");
  return client;
}

}  // namespace

Process StartDaemon(int percent) {
  WriteConfiguration(percent);
  std::filesystem::remove(kPidFile);
  // The child detaches and is ours when its parent has ended.
  Process({BUILD_FOLDER "/qelm"}).AwaitExit();
  pid_t pid = 0;
  Await(
      "the pid file", [&] { return bool(std::ifstream(kPidFile) >> pid); }, microseconds(100));
  return Process(pid);
}

Qelm::Qelm(const BusSetup& setup, int percent)
    : System("qelm", setup), io_([&] {
        process = StartDaemon(percent);
        return Greeted(kIoPort);
      }()) {
  bus.Order("wait frame 30");  // from here on it knows its cards
}

// The daemon reads 255 bytes at a time, and what it reads is a message: seventeen of these
// lines. A line that is cut in two would be two commands, and none of them good.
void Qelm::SendCommand(int address, int value) {
  io_.Send("a" + Hex(address, 1) + "b0d" + Hex(value, 2) + "\r\n\r\n\r\n\r\n");
}

void Qelm::Poll(int cards) {
  Console("DISABLEPOLL");
  for (int address = 0; address < kCards; ++address) {
    const bool polled = address >= bus.first_input && address < bus.first_input + cards;
    Console((polled ? "POLLON:" : "POLLOFF:") + Hex(address, 1));
  }
  if (cards > 0) Console("ENABLEPOLL");
}

Time Qelm::AwaitInput(int address, int value) {
  io_.ReadUntil("a" + Hex(address, 1) + "b0d" + Hex(value, 2) + "\r\n\r");
  return Clock::now();
}

void Qelm::KeepPolling(milliseconds time) { std::this_thread::sleep_for(time); }

void Qelm::ConnectConsole() { cae_.emplace(Greeted(kCaePort)); }

void Qelm::ConnectMonitor() { mon_.emplace(Greeted(kMonPort)); }

std::string Qelm::Console(const std::string& line) {
  cae_->Send(line + "\r\n");
  return cae_->ReadUntil(kPrompt);
}
