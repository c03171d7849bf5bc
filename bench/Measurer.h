// The measures of one system, which runs alone meanwhile.
#pragma once

#include <random>
#include <vector>

#include "System.h"

// What a system uses and does while it polls, or idles.
struct Activity {
  double percent = 0;    // of a core
  double wakeups = 0;    // a second
  double exchanges = 0;  // a second, on the bus
};

class Measurer {
 public:
  explicit Measurer(System& system) : system_(system) {}

  // Microseconds, of single commands and of single changes. They come at random times, so
  // that a system that works in rounds is measured at any point of its round.
  std::vector<double> CommandLatencies(int count, microseconds apart);
  std::vector<double> InputLatencies(int count);

  // Commands a second, to so many cards in turn; so many are sent at once where the
  // system takes them.
  double CommandRate(int cards, int batch);
  // From the first of so many commands to the last one at the adapter.
  double QueueSeconds(int cards, int count);

  Activity Watch(milliseconds time);

 private:
  Time SendOne(int cards);
  void NextValue();
  microseconds Upto(microseconds most);

  System& system_;
  std::mt19937 engine_{1};
  int value_ = 0;  // of the last command or change; the next one differs
  int card_ = 0;
};
