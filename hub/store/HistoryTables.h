// The history in the file, in three levels: values as they came, minutes, hours.
//
//   batch   what was written together: its first and last time (a clock may have jumped between)
//   raw     the values of a batch, a row a channel
//   block   an hour of minutes, or a day of hours, a row a channel
//   state   how far the levels reach
//
// Batches are appended, all channels side by side, since the disk writes whole pages: a row for
// each value, or each channel in a place of its own, would write ten times as much. Every sixty
// batches they are added to the blocks, where a channel's rows lie side by side to be read. A
// value is in `batch` until it is too old, and in `block` from then on where its batch is
// `rolled`: so nothing depends on a clock that goes forward.
//
// It lives as long as its database, and leaves errors there. One thread.
#pragma once

#include <deque>
#include <functional>
#include <optional>
#include <vector>

#include "store/Curve.h"
#include "store/Database.h"
#include "store/Gathered.h"

namespace hub::store {

class HistoryTables {
 public:
  static constexpr int64_t kDaysOfMinutes = 31;

  explicit HistoryTables(Database& database) : database_(database) {}

  static const char* Schema();

  // Inside a transaction.
  void Write(const std::deque<ChannelSample>& samples);
  bool IsDueToRoll();                                // enough batches have come since the last time
  void Roll();                                       // adds new batches to the minutes and hours
  std::optional<int64_t> NoteRollTime(int64_t now);  // gives the one before
  void DropOlder(int64_t now, int keep_days);
  // Drops a part of the oldest; false when nothing of that level is left.
  bool DropOldestRaw(int64_t now);
  bool DropOldestMinutes();
  bool DropOldestHours();

  // `waiting` is what comes in addition.
  History Read(const Span& span, const std::deque<ChannelSample>& waiting);

 private:
  struct Level;
  static const Level kMinutes;
  static const Level kHours;
  using Steps = std::map<uint64_t, Summary>;  // by number in the block
  using Blocks = std::map<int64_t, Steps>;    // by their row

  struct State {
    int64_t rolled = 0;  // the last batch that is in the blocks
    std::optional<int64_t> rolled_at;
    int64_t raw_from = 0;      // of what came before, not all values are kept ...
    int64_t minutes_from = 0;  // ... nor all minutes
  };
  State ReadState();
  void SetState(std::string_view name, int64_t value);

  std::optional<History> ReadRaw(const Span& span, const std::deque<ChannelSample>& waiting);
  using SampleSink = std::function<bool(const Sample&)>;  // false: no more
  void ReadBatches(uint32_t channel, int64_t from, int64_t to, int64_t behind,
                   const SampleSink& sink);
  void ReadBlocks(const Level& level, uint32_t channel, Curve& curve);
  void AddToBlocks(Blocks& blocks, uint32_t channel, const Sample& sample);
  void MergeBlock(int64_t row, Steps steps);
  void DropBatches(const std::vector<int64_t>& batches, int64_t now);
  void DropMinutes(int64_t before);
  bool DropBlocks(const Level& level, int64_t before);  // false where there were none
  std::optional<int64_t> OldestBlock(const Level& level);
  void FailUnreadable(const char* table);

  Database& database_;
};

}  // namespace hub::store
