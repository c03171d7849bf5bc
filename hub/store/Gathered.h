// What waits for its way to the disk. It has a bound: past it the oldest goes, and is counted.
#pragma once

#include <cstdint>
#include <deque>
#include <map>
#include <optional>
#include <string>
#include <utility>

#include "model/Journal.h"
#include "store/Packing.h"

namespace hub::store {

struct ChannelSample {
  uint32_t channel = 0;
  Sample sample;
};

class Gathered {
 public:
  static constexpr size_t kMostSamples = 100'000;  // 2.4 MB
  static constexpr size_t kMostEntries = 10'000;
  static constexpr size_t kMostEntryBytes = 1 << 20;

  // By name; nothing: removed.
  using Documents = std::map<std::string, std::optional<std::string>, std::less<>>;
  Documents documents;  // as many as there are, each as it was put last

  void AddSample(const ChannelSample& sample);
  void AddEntry(model::JournalEntry entry);
  void Append(Gathered later);

  const std::deque<ChannelSample>& Samples() const { return samples_; }
  const std::deque<model::JournalEntry>& Entries() const { return entries_; }
  bool IsEmpty() const { return samples_.empty() && entries_.empty() && documents.empty(); }

  // Values that had to go since the last call.
  uint64_t TakeDropped() { return std::exchange(dropped_, 0); }

  void Clear();

 private:
  std::deque<ChannelSample> samples_;        // as they came
  std::deque<model::JournalEntry> entries_;  // by number
  size_t entry_bytes_ = 0;
  uint64_t dropped_ = 0;
};

}  // namespace hub::store
