// A way from TCP to the cards, with a bus of its own: the daemon, or a proxy and a client
// that makes the frames itself.
#pragma once

#include <string>

#include "Bus.h"
#include "Process.h"
#include "kit/Ports.h"
#include "kit/Stream.h"

// A client of the port, as soon as somebody listens there.
inline Stream ConnectTo(int port) {
  Await("port " + std::to_string(port), [port] { return IsListening(port); });
  Stream client = Stream::ToPort(port);
  client.SendAtOnce();
  return client;
}

class System {
 public:
  System(std::string name, const BusSetup& setup) : name_(std::move(name)), bus(setup) {}
  virtual ~System() = default;

  // Commands: two blocks of an output card. Finishing one waits for what the client
  // can see of its end.
  virtual void SendCommand(int address, int value) = 0;
  virtual void FinishCommand() {}
  // Takes further commands before one is done.
  virtual bool QueuesCommands() const { return false; }

  // How many input cards are polled, from the first one on.
  virtual void Poll(int cards) = 0;
  // When the client has read that the first block of the card has this value.
  virtual Time AwaitInput(int address, int value) = 0;
  // Polls go on for so long.
  virtual void KeepPolling(milliseconds time) = 0;

  // Only one of all systems runs at a time.
  void Hold() {
    process.Hold();
    bus.process.Hold();
  }
  void Release() {
    bus.process.Release();
    process.Release();
  }

  const std::string& Name() const { return name_; }

 private:
  std::string name_;

 public:
  Bus bus;
  Process process;  // the daemon or the proxy
};
