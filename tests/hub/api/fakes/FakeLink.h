// A link that notes what it is told and answers what the test has written down. Its definitions
// of hub::link::Link take the place of the real ones in this program.
#pragma once

#include <functional>
#include <map>
#include <string>
#include <vector>

struct FakeLink {
  // In the order of hub::link::Outcome.
  enum Outcome { kAccepted, kIllegal, kTooFast, kAbsent, kLost };

  FakeLink() { now = this; }
  ~FakeLink() { now = nullptr; }
  FakeLink(const FakeLink&) = delete;
  FakeLink& operator=(const FakeLink&) = delete;

  Outcome outcome = kAccepted;
  std::vector<std::string> set;    // "5 0=0 7=1 pulse=500": raw values by channel
  std::vector<std::string> sent;   // lines of the IO port
  std::vector<std::string> asked;  // lines of the console
  std::map<std::string, std::vector<std::string>> answers;  // of the console; else "CIA: OK"
  bool is_mute = false;                                     // the console does not answer
  bool is_full = false;                                     // it takes no further line
  std::function<void(const std::string& what)> then;        // after each of them

  static FakeLink* now;
};
