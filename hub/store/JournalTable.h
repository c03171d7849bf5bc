// The journal in the file: what happened, by number. It lives as long as its database, and leaves
// errors there. One thread.
#pragma once

#include <deque>

#include "store/Database.h"
#include "store/History.h"

namespace hub::store {

class JournalTable {
 public:
  static constexpr int64_t kMostKept = 50'000;  // entries

  explicit JournalTable(Database& database) : database_(database) {}

  static const char* Schema();

  uint64_t LastNumber();

  // Inside a transaction.
  void Write(const std::deque<model::JournalEntry>& entries);
  void DropPastLimit();
  bool DropOldest();  // a part of it, never the last one; false when no other is left

  // `waiting` comes behind what is in the file; `last` is the number given last.
  JournalPage Read(const JournalSpan& span, uint64_t last,
                   const std::deque<model::JournalEntry>& waiting);

 private:
  JournalPage ReadOldest(uint64_t after, uint64_t end, size_t limit,
                         const std::deque<model::JournalEntry>& waiting);
  JournalPage ReadNewest(uint64_t after, uint64_t end, size_t limit,
                         const std::deque<model::JournalEntry>& waiting);

  Database& database_;
};

}  // namespace hub::store
