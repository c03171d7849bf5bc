// What happened, for people to read: link, adapter, clients, faults, commands and who sent them.
#pragma once

#include <cstdint>
#include <functional>
#include <string>

#include "model/Change.h"

namespace hub::model {

struct JournalEntry {
  uint64_t sequence = 0;  // its number in the journal, from 1; given by the store
  Time time;
  std::string kind;  // "daemon", "adapter", "card", "command", "access", "hub", "broker"
  std::string text;
  std::string by;  // the account, "local" on the Unix socket; empty: nobody
};

using JournalSink = std::function<void(JournalEntry entry)>;

}  // namespace hub::model
