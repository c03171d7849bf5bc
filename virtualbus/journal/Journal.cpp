#include "journal/Journal.h"

#include <cstdio>

namespace virtualbus {

namespace {

constexpr size_t kMeaningColumn = 44;

char Mark(Entry::What what) {
  switch (what) {
    case Entry::What::kFromHost:
      return '>';
    case Entry::What::kToHost:
      return '<';
    case Entry::What::kNote:
      break;
  }
  return '#';
}

}  // namespace

void Journal::Publish(Entry::What what, const Bytes& frame, std::string note) {
  const double seconds = std::chrono::duration<double>(Clock::now() - began_).count();
  const Entry entry{seconds, what, frame, std::move(note)};
  for (const Listener& listener : listeners_) listener(entry);
}

std::string FormatEntry(const Entry& entry) {
  char time[32];
  std::snprintf(time, sizeof time, "%12.6f ", entry.seconds);
  std::string line = std::string(time) + Mark(entry.what) + ' ' + Hex(entry.frame);
  if (entry.what == Entry::What::kNote) return line + entry.note;
  return entry.note.empty() ? line : line + "  # " + entry.note;
}

std::string FormatEntryWithMeaning(const Entry& entry) {
  std::string line = FormatEntry(entry);
  if (entry.what == Entry::What::kNote) return line;
  if (line.size() < kMeaningColumn) line.resize(kMeaningColumn, ' ');
  const bool from_host = entry.what == Entry::What::kFromHost;
  return line + "  " + Describe(from_host ? Direction::kFromHost : Direction::kToHost, entry.frame);
}

}  // namespace virtualbus
