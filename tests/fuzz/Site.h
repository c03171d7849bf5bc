// The daemon between two messages: one card of every kind on the bus, a client on every
// port, and no running thread, so that what it queues stays on the queues.
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

  // The entries queued for the CAE client; they are taken off.
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

// What the daemon gets of these bytes: one read, up to the first zero byte.
std::string AsRead(const std::string& bytes);
