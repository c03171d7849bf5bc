// What the clients of the tests connect to: the daemon itself, or a program in front of it that
// offers its ports again. A program of tests that has one names it before the tests begin.
#pragma once

#include <string>

#include "kit/Client.h"

enum Port { kCae = 5001, kIo = 5002, kMon = 5003 };

class Front {
 public:
  virtual ~Front() = default;

  static Front& Now();
  static void Use(Front& front);  // lives as long as the tests

  // Why this test ("IoCommands.ShortCommandsAreSurvived") does not hold here; empty where it does.
  virtual std::string Difference(const std::string&) const { return ""; }

  virtual int PortOf(Port port) const { return port; }
  virtual void Start(Place) {}         // the daemon was launched; ends when it can be asked
  virtual void AwaitOutputs(Place) {}  // what is written to a card from here on goes out at once
  virtual void End() {}

  // The last IO command was illegal, and somebody is told so.
  virtual void ExpectIllegal(Client& io, Client& cae, const std::string& command, Place place);
};
