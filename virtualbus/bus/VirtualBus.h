// The parts of the program in the order in which they are built; each knows only those before it.
#pragma once

#include "base/Loop.h"
#include "bus/BusAdapter.h"
#include "bus/CardOperator.h"
#include "journal/Journal.h"
#include "line/Cable.h"
#include "line/Exchange.h"
#include "line/Faults.h"
#include "line/Wire.h"

namespace virtualbus {

struct VirtualBus {
  explicit VirtualBus(uint32_t seed) : faults(seed) {}

  // Makes the pseudo terminal. The host finds it when the cable is plugged, which makes the link.
  Problem Open() {
    exchange.SetAnswerer([this](const Bytes& request) { return adapter.Answer(request); });
    return wire.Open([this](const Bytes& frame) { exchange.OnFrame(frame); },
                     [this](std::string note) { journal.Note(std::move(note)); });
  }

  Loop loop;
  Journal journal;
  BusAdapter adapter;
  Faults faults;
  Wire wire{loop};
  Cable cable{wire, journal};
  Exchange exchange{wire, faults, journal};
  CardOperator card_operator{loop, adapter, journal};
};

}  // namespace virtualbus
