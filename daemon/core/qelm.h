// QELM, the central object: it owns every queue, every worker thread and the card
// table, and its master loop moves the messages between them.
//
// One instance, in main()'s frame, for the whole run. Every method is called by the
// main thread. The command interpreters are methods too; they live in commands/.
#pragma once

#include <string>

#include "config/Descriptors.h"
#include "runtime/ByteList.h"
#include "runtime/Logger.h"

class PERIFCARD;
class QEQUEUE;
class SERIAL_INTERFACE;
class SOCKET_INTERFACE;

// The caught-signal cell while nothing was caught.
inline constexpr int kNoSignal = -1;

// Records in the card table: the addresses 0 to F, and one that stays empty.
inline constexpr int kCardRecords = 17;

class QELM {
 public:
  QELM(const LOGGER& logger, int* signalFlag);
  ~QELM();
  QELM(const QELM&) = delete;
  QELM& operator=(const QELM&) = delete;

  // Reads the configuration and sets the logger up; false where it is not usable.
  bool InitProgramData();
  static CONFIG_DESCRIPTOR ReadConfig();

  // Builds the three TCP interfaces and the serial link; their threads run from here.
  void InitInterfaces();

  // The master loop: returns when a signal ends the process.
  void MasterThread();

  // A message of the IO client: frames for the cards; always true.
  bool ParseOutCommand(const QList& message);

  // One line of the CAE client: every command whose test fires, then the prompt.
  void ParseCaeLine(const std::string& line);

  // Queues one line for the CAE client, its separator added.
  void ReplyOnCae(const std::string& text);

  LOGGER Logger;             // set up by InitProgramData, copied to the interfaces
  CONFIG_DESCRIPTOR Config;  // main thread only
  QEQUEUE* IoQueue;          // from the IO client
  QEQUEUE* CaeQueue;         // from the CAE client
  QEQUEUE* MonQueue;         // from the MON client
  QEQUEUE* SerialQueue;      // reports of the serial thread
  SOCKET_INTERFACE* CaeInterface = nullptr;
  SOCKET_INTERFACE* IoInterface = nullptr;
  SOCKET_INTERFACE* MonInterface = nullptr;
  SERIAL_INTERFACE* SerialInterface = nullptr;
  int* SignalFlag;   // the process-wide cell; not owned
  PERIFCARD* Cards;  // kCardRecords of them, shared with the serial thread
  char* WorkBuffer;  // 16 bytes, unused: docs/design/contract.md

  // The last ON (0xFF) or OFF (0x00) of the LCD boot options, main thread only.
  unsigned char SelfTestState = 0;
  unsigned char InitLightState = 0;

 private:
  SOCKET_INTERFACE* OpenInterface(const INTERFACE_DESCRIPTOR& descriptor, QEQUEUE* in_queue);
  SERIAL_INTERFACE* OpenSerial();
  bool ServeSignal();
  void ForwardReport();
  void ServeIoMessage();
  void DiscardMonInput();
};
