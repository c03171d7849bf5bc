// What has to hold of every bus of the hub.
#pragma once

#include <cstdint>

#include "model/Bus.h"

void CheckBus(const hub::model::Bus& bus);

// Hears every change of the bus, which outlives it.
class BusWatch {
 public:
  explicit BusWatch(hub::model::Bus& bus);
  BusWatch(const BusWatch&) = delete;
  BusWatch& operator=(const BusWatch&) = delete;

 private:
  void Take(const hub::model::Change& change);

  const hub::model::Bus& bus_;
  uint64_t told_ = 0;
};
