// SOCKET_INTERFACE, one TCP port with a worker thread of its own.
//
// QELM owns three: CAE, IO and MON. Each serves one client at a time. What a client
// sends goes to InQueue as it was read; what the master loop puts on OutQueue is
// written to the client, one item a pass. This class does not interpret the bytes.
#pragma once

#include <string>

#include "config/Descriptors.h"
#include "runtime/ByteList.h"
#include "runtime/Logger.h"
#include "runtime/Queue.h"
#include "runtime/SharedFd.h"
#include "runtime/Thread.h"

struct sockaddr_in;

// The session:
//
//                 Init                 next pass             a client came
//   kNotStarted ─────────► kListening ───────────► kAccepting ───────────► kConnected
//                           ▲      ▲                    │                      │
//         Init, about four  │      └── accept failed ───┘                      │ the client
//         seconds later     │                                                  ▼ has gone
//                           └─────────────────────────────────────────────── kClosed
//
// CloseByCommand leads from every state to kClosed. The states are entered in
// EnterListening, OnTask, Welcome and EnterClosed.
enum SessionState_t : int {
  kNotStarted = 0,  // Init has not succeeded yet; nothing retries it
  kListening = 1,
  kAccepting = 2,  // the thread waits for a client
  kConnected = 3,  // a client was greeted
  kClosed = 4,     // the session has ended; the port is opened again shortly
};

enum DataMode_t : int {
  kBinaryData = 1,  // items with a length byte in front; unused, docs/design/contract.md
  kTextData = 2,    // items end at a zero byte and go out with a carriage return behind
};

class SOCKET_INTERFACE final : public CThread {
 public:
  // Starts the thread, opens no socket. The queue for received data stays the caller's.
  SOCKET_INTERFACE(INTERFACE_DESCRIPTOR descriptor, const LOGGER& logger, QEQUEUE* in_queue,
                   int data_mode);
  ~SOCKET_INTERFACE();

  // Opens the listening socket; true leaves State at kListening. Called once by the
  // main thread after construction, later by the interface's own thread.
  bool Init();

  // One pass of the session; always true. The interface's own thread.
  bool OnTask() override;

  // Ends the session, in whatever state it is; the port opens again about four seconds
  // later. Master loop.
  void CloseByCommand();

  // Logs a caught signal. Master loop.
  void mf_SIGhandler(int signal);

  // Ends the thread, even while it waits for a client. To be called before anything that
  // the thread uses is released; the destructor calls it too.
  void Halt();

  INTERFACE_DESCRIPTOR Descriptor;  // State and ThreadDelay are shared, the rest is constant
  LOGGER Logger;
  SHARED_FD ListenSocket;
  SHARED_FD ClientSocket;
  int RetryCount = 0;               // closed passes since the last close; shared
  QEQUEUE* OutQueue = new QEQUEUE;  // filled by the master loop; owned
  QEQUEUE* InQueue;                 // emptied by the master loop; owned by QELM
  int DataMode;                     // DataMode_t, constant

 private:
  void EnterListening();
  void EnterClosed();
  void AcceptClient();
  void Welcome(const sockaddr_in& peer);
  void ServeClient();
  void Receive();
  void Transmit();
  void LoseClient();
  void Reopen();
  void LogEvent(const std::string& tag, const std::string& before, const std::string& after = "");
};
