#include "store/JournalTable.h"

#include <algorithm>

#include "store/Milliseconds.h"

namespace hub::store {

namespace {

model::JournalEntry ReadEntry(const Statement& row) {
  return {static_cast<uint64_t>(row.Integer(0)), ToTime(row.Integer(1)), row.Text(2), row.Text(3),
          row.Text(4)};
}

}  // namespace

const char* JournalTable::Schema() {
  return "CREATE TABLE journal"
         " (number INTEGER PRIMARY KEY, time INTEGER, kind BLOB, text BLOB, by BLOB);";
}

uint64_t JournalTable::LastNumber() {
  return static_cast<uint64_t>(database_.Number("SELECT max(number) FROM journal"));
}

void JournalTable::Write(const std::deque<model::JournalEntry>& entries) {
  Statement insert(database_, "INSERT OR REPLACE INTO journal VALUES (?, ?, ?, ?, ?)");
  for (const model::JournalEntry& entry : entries)
    insert.Bind(entry.sequence, ToMilliseconds(entry.time), entry.kind, entry.text, entry.by).Run();
}

void JournalTable::DropPastLimit() {
  Statement(database_, "DELETE FROM journal WHERE number <= (SELECT max(number) FROM journal) - ?")
      .Bind(kMostKept)
      .Run();
}

bool JournalTable::DropOldest() {
  const int64_t first = database_.Number("SELECT min(number) FROM journal");
  const int64_t last = database_.Number("SELECT max(number) FROM journal");
  if (first == last) return false;  // the numbers go on from it
  Statement(database_, "DELETE FROM journal WHERE number <= ?")
      .Bind(first + (last - first) / 10)
      .Run();
  return true;
}

JournalPage JournalTable::Read(const JournalSpan& span, uint64_t last,
                               const std::deque<model::JournalEntry>& waiting) {
  const uint64_t after = span.after.value_or(0);
  const uint64_t end = std::min(span.before, last + 1);
  if (after >= last || after + 1 >= end || span.limit == 0) return {};
  const bool is_followed = span.after && span.before > last;
  return is_followed ? ReadOldest(after, end, span.limit, waiting)
                     : ReadNewest(after, end, span.limit, waiting);
}

JournalPage JournalTable::ReadOldest(uint64_t after, uint64_t end, size_t limit,
                                     const std::deque<model::JournalEntry>& waiting) {
  JournalPage page;
  Statement rows(database_,
                 "SELECT * FROM journal WHERE number > ? AND number < ?"
                 " ORDER BY number LIMIT ?");
  rows.Bind(after, end, uint64_t{limit});
  while (rows.Next()) page.entries.push_back(ReadEntry(rows));
  for (const model::JournalEntry& entry : waiting) {
    if (page.entries.size() == limit) break;
    if (entry.sequence > after && entry.sequence < end) page.entries.push_back(entry);
  }
  const bool is_full = page.entries.size() == limit;
  const uint64_t page_end = is_full ? page.entries.back().sequence + 1 : end;
  page.lost = page_end - 1 - after - page.entries.size();
  return page;
}

JournalPage JournalTable::ReadNewest(uint64_t after, uint64_t end, size_t limit,
                                     const std::deque<model::JournalEntry>& waiting) {
  JournalPage page;
  uint64_t kept = 0;
  for (auto entry = waiting.rbegin(); entry != waiting.rend() && entry->sequence > after; ++entry) {
    if (entry->sequence >= end) continue;
    ++kept;
    if (page.entries.size() < limit) page.entries.push_back(*entry);
  }
  Statement count(database_, "SELECT count(*) FROM journal WHERE number > ? AND number < ?");
  if (count.Bind(after, end).Next()) kept += static_cast<uint64_t>(count.Integer(0));
  Statement rows(database_,
                 "SELECT * FROM journal WHERE number > ? AND number < ?"
                 " ORDER BY number DESC LIMIT ?");
  rows.Bind(after, end, uint64_t{limit - page.entries.size()});
  while (rows.Next()) page.entries.push_back(ReadEntry(rows));
  std::ranges::reverse(page.entries);
  page.lost = end - 1 - after - kept;
  return page;
}

}  // namespace hub::store
