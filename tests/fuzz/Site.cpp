#include "Site.h"

#include <string_view>
#include <utility>

#include "StandIns.h"
#include "runtime/Queue.h"

namespace {

// Built once for all runs, since each has a thread. It is ended, or waits for ever.
SOCKET_INTERFACE* BuildInterface() {
  auto* interface = new SOCKET_INTERFACE({}, LOGGER(), nullptr, kTextData);
  interface->Halt();
  return interface;
}

SERIAL_INTERFACE* BuildSerial() {
  auto* serial = new SERIAL_INTERFACE;
  for (QEQUEUE*& queue : serial->CardQueues) queue = new QEQUEUE;
  return serial;
}

SOCKET_INTERFACE* Connected(SOCKET_INTERFACE* interface) {
  interface->OutQueue->Items.clear();
  interface->Descriptor.State = kConnected;
  return interface;
}

SERIAL_INTERFACE* OnLink(SERIAL_INTERFACE* serial, const QELM& qelm) {
  for (QEQUEUE* queue : serial->CardQueues) queue->Items.clear();
  serial->Cards = qelm.Cards;
  serial->OutQueue = qelm.SerialQueue;
  serial->EnablePoll = 0;
  serial->LinkState = kLinkUp;
  serial->Fd.Adopt(Wire::kDescriptor);
  return serial;
}

}  // namespace

Site::Site(Wire::Adapter adapter) : Link(std::move(adapter)), Qelm(LOGGER(), &Signal) {
  static SOCKET_INTERFACE* const cae = BuildInterface();
  static SOCKET_INTERFACE* const io = BuildInterface();
  static SOCKET_INTERFACE* const mon = BuildInterface();
  static SERIAL_INTERFACE* const serial = BuildSerial();
  Qelm.CaeInterface = Connected(cae);
  Qelm.IoInterface = Connected(io);
  Qelm.MonInterface = Connected(mon);
  Qelm.SerialInterface = OnLink(serial, Qelm);
  for (unsigned char a = 0; a < kCardCount; ++a) Qelm.Cards[a].setCardData(kSiteCards[a], a);
  DuringPauses([this] { Qelm.SerialInterface->OnTask(); });
}

Site::~Site() {
  DuringPauses(nullptr);
  Qelm.CaeInterface = nullptr;
  Qelm.IoInterface = nullptr;
  Qelm.MonInterface = nullptr;
  Qelm.SerialInterface = nullptr;
}

std::vector<std::string> Site::CaeReplies() const {
  return TakeTexts(*Qelm.CaeInterface->OutQueue);
}

std::vector<std::string> Site::FramesFor(int address) const {
  return TakeTexts(*Qelm.SerialInterface->CardQueues[static_cast<std::size_t>(address)]);
}

std::string AsRead(const std::string& bytes) {
  constexpr std::size_t kReadSize = 255;
  const std::string read = bytes.substr(0, kReadSize);
  return read.substr(0, read.find('\0'));
}
