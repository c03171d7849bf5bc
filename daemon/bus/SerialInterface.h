// SERIAL_INTERFACE, the worker thread that owns the serial link to the bus adapter.
//
// It finds and opens the adapter, sends the frames that wait for the cards, one of
// each queue a round, and turns the replies into card table entries, input reports
// and answers to card requests. QELM owns it. Other threads put what is to be sent on
// CardQueues; none of them touches the device.
#pragma once

#include <array>
#include <list>
#include <string>

#include "bus/Frames.h"
#include "bus/PerifCard.h"
#include "config/Descriptors.h"
#include "runtime/ByteList.h"
#include "runtime/Logger.h"
#include "runtime/Queue.h"
#include "runtime/SharedFd.h"
#include "runtime/Thread.h"

// The link:
//
//                 a device opens                 the adapter answers
//   kLinkClosed ─────────────────► kLinkChecking ───────────────────► kLinkUp
//        ▲                               │                               │
//        └── no answer: again in 2 s ────┴──── an exchange timed out ────┘
//
// The states are entered in CloseLink and, the other two, in CheckDevice.
enum LinkState_t : int {
  kLinkClosed = 0,
  kLinkChecking = 1,  // a device is open, the adapter has not answered yet
  kLinkUp = 3,
};

enum DeviceMode_t : int {
  kNamedDevice = 1,    // DeviceName and no other; unused, see docs/design/contract.md
  kSearchDevices = 2,  // whichever ttyUSB device has the adapter
};

class SERIAL_INTERFACE final : public CThread {
 public:
  SERIAL_INTERFACE() = default;  // the fields are set before SetThreadType starts the rounds
  ~SERIAL_INTERFACE();

  // One round; always true. Serial thread, as are the methods below.
  bool OnTask() override;

  // Finds, opens, sets up and checks the adapter; true leaves LinkState at kLinkUp.
  bool Init();
  // Full paths of the USB serial devices, in the order of ls.
  static std::list<std::string> GetUSBDevices();
  // 460800 baud, 8 data bits, no parity, 1 stop bit, raw.
  bool SetSerialParams();
  // True when the bus adapter answered on the open device.
  bool HardwareCheck(const std::string& device);
  // One exchange. Returns the payload of the reply, "TME" if none came in time, or "LCE"
  // for an empty frame, which is not sent.
  QList Comm2HW(QList frame);

  // Serial thread only, once it runs.
  LOGGER Logger;
  std::string DeviceName;       // path of the device in use
  SHARED_FD Fd;                 // the device; the master loop withdraws it at a signal
  int LinkState = kLinkClosed;  // LinkState_t
  int DeviceMode = kSearchDevices;
  QEQUEUE* OutQueue = nullptr;                // reports; owned by QELM
  unsigned char AwaitingReply = 0;            // 1 while a reply is incomplete
  int RxCount = 0;                            // bytes received of the current reply
  std::array<unsigned char, 136> RxBuffer{};  // the reply, its length byte first

  // Filled by the master loop, taken from by the serial thread: 0..15 by card
  // address, then the driver queue. Owned; created by QELM before the rounds start.
  std::array<QEQUEUE*, kQueueCount> CardQueues{};

  PERIFCARD* Cards = nullptr;  // the card table; owned by QELM

  // Shared with the master loop.
  unsigned char EnablePoll = 0;     // 0 stops the queuing of poll frames
  int ThreadDelay = kDefaultDelay;  // pause at the start of a round, microseconds

  unsigned char AutoDiscover = 0;  // discover whenever the link has come up

 private:
  class Reply;

  void OpenLink();
  void CloseLink();
  bool OpenDevice(const std::string& failure);
  bool CheckDevice();
  bool SearchDevices();
  void LogLine(const std::string& tag, const std::string& text);

  void DiscardStaleInput();
  void SendFrame(const QList& frame);
  bool AwaitReply(int budget);
  void StoreReceived(const unsigned char* bytes, std::size_t count);

  void ServeQueues();
  bool HandleReply(const QList& bytes);
  void HandleDiscovery(const Reply& reply);
  void HandleQuery(const Reply& reply);
  void HandlePoll(const Reply& reply);
  void WriteInputReports(int address);
  void QueuePolls();
};
