// The daemon on a bus, with a client on IO and one on CAE.
#pragma once

#include <optional>

#include "System.h"

inline constexpr int kCaePort = 5010;
inline constexpr int kIoPort = 5011;
inline constexpr int kMonPort = 5012;

// Starts the daemon, not polling, at this speed.
Process StartDaemon(int percent);

class Qelm final : public System {
 public:
  explicit Qelm(const BusSetup& setup, int percent = 100);

  void SendCommand(int address, int value) override;
  bool QueuesCommands() const override { return true; }
  void Poll(int cards) override;
  Time AwaitInput(int address, int value) override;
  void KeepPolling(milliseconds time) override;

  void ConnectConsole();
  void ConnectMonitor();
  // A line of the console, and its reply.
  std::string Console(const std::string& line);

 private:
  Stream io_;
  std::optional<Stream> cae_;
  std::optional<Stream> mon_;
};
