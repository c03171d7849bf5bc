// One lamp on and off, one contact up and down, all through one door.
#pragma once

#include <random>
#include <vector>

#include "Bus.h"
#include "Doors.h"

class Visit {
 public:
  Visit(Bus& bus, Door& door) : bus_(bus), door_(door) {}

  // Microseconds, at random times: any point of a round of the daemon is met.
  std::vector<double> Commands();  // to the first card
  std::vector<double> Changes();   // of the first input card
  // Commands a second, to six cards.
  double Burst();

 private:
  Time Set(bool on);
  void Pause();

  Bus& bus_;
  Door& door_;
  std::mt19937 engine_{1};
};
