// Bytes passed between TCP and a device as they are, and a client that makes the frames.
#pragma once

#include "System.h"

struct ProxyKind {
  std::string name;
  // The command line of the proxy for this port and device.
  std::vector<std::string> (*command)(const std::string& port, const std::string& device);
};

class Proxy final : public System {
 public:
  Proxy(const ProxyKind& kind, int port, const BusSetup& setup);

  void SendCommand(int address, int value) override;
  void FinishCommand() override;
  void Poll(int cards) override;
  Time AwaitInput(int address, int value) override;
  void KeepPolling(milliseconds time) override;

 private:
  // The next card in turn: its address and its first block.
  std::pair<int, int> PollNext();

  Stream client_;
  int polled_ = 0;
  int next_ = 0;
};

// The floor, and what people use.
const std::vector<ProxyKind>& ProxyKinds();
