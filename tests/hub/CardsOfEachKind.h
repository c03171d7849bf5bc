// A bus with a card of each kind, at the addresses of the demo's, as the daemon lists them.
#pragma once

#include "protocol/ConsoleReplies.h"

namespace hub {

inline protocol::CardNames CardsOfEachKind() {
  protocol::CardNames names;
  names.fill("EMPTY");
  names[0x0] = "6 channel RC SERVO CONTROLLER";
  names[0x3] = "16 channel DIGITAL INPUT";
  names[0x4] = "3 channel DC MOTOR CONTROLLER";
  names[0x5] = "16 channel DIGITAL OUTPUT";
  names[0x8] = "KEYMX and ROTE CONTROLLER";
  names[0x9] = "IR REMOTE CONTROLLER";
  names[0xE] = "ALPHANUMERIC LCD CONTROLLER";
  names[0xF] = "6 channel ANALOGUE INPUT";
  return names;
}

}  // namespace hub
