// Accounts and tokens that the test has written down. Its definitions of hub::access::Access take
// the place of the real ones in this program.
#pragma once

#include <map>
#include <optional>
#include <string>
#include <vector>

#include "access/Role.h"

struct FakeAccess {
  // In the order of hub::access::Refusal.
  enum Refusal {
    kWrong,
    kExists,
    kMissing,
    kLastAdmin,
    kFirstIsAdmin,
    kBadName,
    kShortPassword,
    kLongPassword,
    kBusy
  };

  FakeAccess() { now = this; }
  ~FakeAccess() { now = nullptr; }
  FakeAccess(const FakeAccess&) = delete;
  FakeAccess& operator=(const FakeAccess&) = delete;

  std::optional<Refusal> refusal;  // of whatever comes
  std::optional<int> wait;         // seconds; of a log-in
  bool fails = false;              // logging in throws
  std::vector<std::string> asked;  // "add operator use 'secret word'"
  std::map<std::string, hub::access::Role> accounts;
  std::map<std::string, hub::access::Role> tokens;

  static FakeAccess* now;
};
