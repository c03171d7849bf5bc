// The daemon between two messages: one card of every kind on the bus, clients on all
// ports, and no thread that runs. What it queues stays where it was put.
#pragma once

#include <string>
#include <vector>

#include "Wire.h"
#include "bus/PerifCard.h"
#include "bus/SerialInterface.h"
#include "core/qelm.h"
#include "daemon/support/Lists.h"
#include "net/SocketInterface.h"

class Site {
 public:
  explicit Site(Wire::Adapter adapter);
  ~Site();
  Site(const Site&) = delete;
  Site& operator=(const Site&) = delete;

  // What the CAE client is to be sent, an entry each.
  std::vector<std::string> CaeReplies() const;
  std::vector<std::string> FramesFor(int address) const;

  Wire Link;
  int Signal = kNoSignal;
  QELM Qelm;
};

// Card types by address.
inline constexpr unsigned char kSiteCards[16] = {
    kServo,      kEmptyType, kMotor, kDigitalInput, kKeyMatrix, kDigitalOutput,
    kSilentType, 0x42,       kServo, kInfrared,     kEmptyType, kEmptyType,
    kEmptyType,  kEmptyType, kLcd,   kAnalogueInput};

// What one read of a client's message leaves of these bytes.
std::string AsRead(const std::string& bytes);
